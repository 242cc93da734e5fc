# Empty dependencies file for straighten_page.
# This may be replaced when dependencies are built.
