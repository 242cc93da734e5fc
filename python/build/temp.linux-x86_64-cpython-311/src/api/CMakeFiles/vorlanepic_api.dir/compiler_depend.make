# Empty compiler generated dependencies file for vorlanepic_api.
# This may be replaced when dependencies are built.
