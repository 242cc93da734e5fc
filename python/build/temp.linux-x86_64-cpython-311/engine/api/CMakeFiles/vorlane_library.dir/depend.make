# Empty dependencies file for vorlane_library.
# This may be replaced when dependencies are built.
