# Empty compiler generated dependencies file for vorlanepic_core.
# This may be replaced when dependencies are built.
