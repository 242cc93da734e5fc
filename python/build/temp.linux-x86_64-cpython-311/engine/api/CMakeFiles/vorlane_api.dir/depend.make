# Empty dependencies file for vorlane_api.
# This may be replaced when dependencies are built.
