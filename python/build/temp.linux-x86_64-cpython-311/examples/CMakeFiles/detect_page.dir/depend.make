# Empty dependencies file for detect_page.
# This may be replaced when dependencies are built.
