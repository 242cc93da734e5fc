# Empty compiler generated dependencies file for vorlane_engine.
# This may be replaced when dependencies are built.
