# Empty compiler generated dependencies file for vorlane_python.
# This may be replaced when dependencies are built.
