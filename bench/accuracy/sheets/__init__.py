"""Sheets to lay on the glass, by the name of their kind: each draws one from a generator and the
length of its longer side in pixels."""
from . import forms, pictures, prose, ruled, small

TEXT = {
    "one column": prose.one_column,
    "two columns": prose.two_columns,
    "three columns": prose.three_columns,
    "letter": prose.typed_letter,
    "music": ruled.music,
    "table": ruled.account_table,
    "illustrated page": pictures.illustrated_page,
}
FORMS = {
    "form": forms.boxed_form,
    "mark sheet": forms.mark_sheet,
    "barred sheet": forms.barred_sheet,
    "slip": forms.payment_slip,
}
SMALL = {
    "receipt": small.receipt,
    "punched card": small.punched_card,
    "index card": small.index_card,
}
PICTURES = {"album leaf": pictures.album_leaf, "photograph": pictures.bare_photograph}
SPARSE = {"title page": prose.title_page, "handwriting": prose.handwriting}
BLANK = {"blank": pictures.blank}
ALL = {**TEXT, **FORMS, **SMALL, **PICTURES, **SPARSE, **BLANK}
