# Empty dependencies file for read_sheet.
# This may be replaced when dependencies are built.
