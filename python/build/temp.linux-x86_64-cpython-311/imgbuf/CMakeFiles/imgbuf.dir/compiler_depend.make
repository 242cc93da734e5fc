# Empty compiler generated dependencies file for imgbuf.
# This may be replaced when dependencies are built.
