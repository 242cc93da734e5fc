# Empty compiler generated dependencies file for vorlanepic.
# This may be replaced when dependencies are built.
