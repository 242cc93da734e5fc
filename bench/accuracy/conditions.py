"""The conditions that pages are composed under: a table of what each changes."""
from dataclasses import dataclass

from . import glass, neighbours, planning, sheets, surrounds
from .sheets import pictures

ORDINARY, HARD = "ordinary", "hard"


@dataclass(frozen=True)
class Condition:
    """`plan` changes plans, `on_sheet` the drawn sheet, `behind` the scene before it is put
    together, `over` the picture afterwards. `seen`: what of the page the picture shows, of "sides"
    (its paper's edge) and "print". `count`: pages at scale 1."""

    name: str
    title: str
    group: str
    count: int
    plan: tuple = ()
    on_sheet: tuple = ()
    behind: tuple = ()
    over: tuple = ()
    seen: tuple = ("sides", "print")


_TEXTED = {**sheets.TEXT, "form": sheets.FORMS["form"]}
_EDGELESS = {**_TEXTED, **sheets.FORMS}
_BARRED = {name: sheets.FORMS[name] for name in ("barred sheet", "mark sheet")}
_RECEIPTS = {"receipt": sheets.SMALL["receipt"]}

TABLE = (
    Condition("clean", "dark surround, clean glass", ORDINARY, 18, plan=(planning.clean_glass,)),
    Condition(
        "textured",
        "textured surround: cloth, felt, wood, card",
        ORDINARY,
        14,
        plan=(planning.with_surround(surrounds.TEXTURED),),
    ),
    Condition(
        "upright", "turned by 0 to 0.3 degrees", ORDINARY, 12, plan=(planning.hardly_turned,)
    ),
    Condition("steep", "turned by 12 to 40 degrees", ORDINARY, 14, plan=(planning.steep,)),
    Condition(
        "dust",
        "dust and hairs",
        ORDINARY,
        14,
        plan=(planning.dusty, planning.one_bit(0.25)),
        over=(glass.hairs,),
    ),
    Condition("streaks", "scanner streaks", ORDINARY, 12, over=(glass.streaks,)),
    Condition("glow", "glow along a side", ORDINARY, 14, over=(glass.glow,)),
    Condition(
        "lid",
        "light or grey lid with the sheet's shadow",
        ORDINARY,
        16,
        behind=(neighbours.light_lid,),
    ),
    Condition(
        "half-light",
        "light behind one half, dark behind the other",
        ORDINARY,
        12,
        behind=(neighbours.half_light_lid,),
    ),
    Condition(
        "off-one",
        "running off one side",
        ORDINARY,
        16,
        plan=(planning.running_off(1, 1), planning.one_bit(0.2)),
    ),
    Condition(
        "off-two",
        "running off two sides",
        ORDINARY,
        16,
        plan=(planning.running_off(2, 2), planning.one_bit(0.2)),
    ),
    Condition(
        "off-three", "running off three sides", ORDINARY, 14, plan=(planning.running_off(3, 3),)
    ),
    Condition("torn", "torn and folded corners", ORDINARY, 16, plan=(planning.torn,)),
    Condition("old", "stained and yellowed paper", ORDINARY, 14, plan=(planning.old_paper,)),
    Condition("dark", "dark page", ORDINARY, 14, plan=(planning.dark_page,)),
    Condition(
        "beside",
        "a second page beside it",
        ORDINARY,
        16,
        plan=(planning.room_at_one_side,),
        behind=(neighbours.second_page,),
    ),
    Condition(
        "objects",
        "things in the surround",
        ORDINARY,
        14,
        plan=(planning.wide_margins(0.05, 0.2),),
        behind=(neighbours.objects,),
    ),
    Condition("shadow", "a shadow across", ORDINARY, 14, over=(glass.shadow_across,)),
    Condition("jpeg", "hard JPEG (quality 6 to 30)", ORDINARY, 12, plan=(planning.hard_jpeg,)),
    Condition("one-bit", "1 bit, at many thresholds", ORDINARY, 20, plan=(planning.one_bit(),)),
    Condition("sheared", "sheared sheet", ORDINARY, 12, plan=(planning.sheared,)),
    Condition("perspective", "perspective", ORDINARY, 12, plan=(planning.in_perspective,)),
    Condition(
        "print-off",
        "print 0.4 to 1.5 degrees off the paper",
        ORDINARY,
        14,
        plan=(planning.of_kind(_TEXTED), planning.print_off_paper),
    ),
    Condition(
        "filled",
        "print filling the frame, on white",
        ORDINARY,
        18,
        plan=(
            planning.of_kind(_EDGELESS),
            planning.normally_turned,
            planning.wide_margins(-0.08, 0.05),
            planning.clean_paper,
            planning.one_bit(0.3),
        ),
        behind=(neighbours.paper_everywhere,),
        seen=("print",),
    ),
    Condition(
        "strip",
        "black strip along one or two sides",
        ORDINARY,
        16,
        plan=(
            planning.of_kind(_EDGELESS),
            planning.normally_turned,
            planning.clean_paper,
            planning.one_bit(0.3),
        ),
        behind=(neighbours.black_strips,),
    ),
    Condition(
        "coarse", "low resolution (420 to 800 pixels)", ORDINARY, 12, plan=(planning.coarse,)
    ),
    Condition("blank", "blank page", ORDINARY, 10, plan=(planning.of_kind(sheets.BLANK),)),
    Condition("no-page", "no page", ORDINARY, 12, seen=()),
    Condition(
        "mount",
        "on a mount turned otherwise",
        HARD,
        18,
        plan=(planning.wide_margins(0.05, 0.2), planning.normally_turned),
        behind=(neighbours.mount,),
    ),
    Condition(
        "rim",
        "light lid with the rim of the glass",
        HARD,
        16,
        plan=(planning.wide_margins(0.05, 0.2), planning.normally_turned),
        behind=(neighbours.rim_of_the_glass,),
    ),
    Condition("streak-pair", "two streaks along the frame", HARD, 12, over=(glass.streak_pair,)),
    Condition("halo", "halo at the frame", HARD, 14, over=(glass.halo,)),
    Condition(
        "bleed", "dark pictures running to the sheet's edge", HARD, 18, on_sheet=(pictures.bleed,)
    ),
    Condition("stack", "sheets below peeping out", HARD, 16, behind=(neighbours.stack,)),
    Condition(
        "receipts",
        "several receipts",
        HARD,
        14,
        plan=(planning.of_kind(_RECEIPTS), planning.wide_margins(0.1, 0.6)),
        behind=(neighbours.several_receipts,),
    ),
    Condition("curved", "curved edges", HARD, 14, plan=(planning.curved,)),
    Condition(
        "cut-bars",
        "bars cut by the frame",
        HARD,
        16,
        plan=(planning.of_kind(_BARRED), planning.running_off(1, 3)),
    ),
)
BY_NAME = {condition.name: condition for condition in TABLE}
