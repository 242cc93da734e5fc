"""Prose to set pages in, written for these pages."""

_PROSE = """
The ferry left the harbour a little before six, while the lamps along the quay were still burning.
Nobody spoke until the last of the houses had gone behind the point.
My uncle kept the accounts of the mill in a tall narrow book, one line for each sack, and he ruled
the columns himself every Sunday evening.
When the river rose in March of that year, the lower store stood under water for nine days.
What was saved was carried up to the loft and laid out to dry on strings, letters beside invoices
and invoices beside hymns.
It is commonly supposed that a clerk has no opinions; ours had one on everything, and wrote it in
pencil in the margin.
The survey was begun at the northern boundary stone and carried round with the sun, in chains and
links, as the custom of the parish required.
At the second bend the road divides, and travellers who trust the signpost will be obliged to turn
back before night.
She answered that the machine had been set straight twice already, and that it was the floor which
leaned.
In the spring the schoolmaster lent me his lens, and for the first time I saw that a printed line
is a row of small hills.
The orchard belonged to three brothers who had not exchanged a word since the wedding, yet every
autumn they picked it together.
Of the seventeen barrels landed at the wharf, four were found empty and one was full of nails.
He had the habit of folding the corner of a page down to remember it, so that in time the book
remembered everything.
Rain in the morning, wind from the west by noon; the glass stands at twenty-nine and a half and is
falling.
No person shall carry away any volume, map or drawing from the reading room without leave of the
keeper in writing.
The paper was made of rags until the year of the great fire, and of wood ever after, which is why
the older letters are the whiter ones.
A good compositor sets some fifteen hundred letters in an hour and distributes twice as many.
The bell of the upper town is cast with a flaw, and strangers take its note for a warning.
We counted the geese as they passed over the dyke, and wrote the number down on the back of the
map.
If the margin be cut too near, the binder has nothing to hold; if it be left too wide, the reader
thinks himself cheated.
The lighthouse keeper painted the stairs a different colour each winter, and by the time he
retired there was scarcely room to pass.
Every plank in the bridge was numbered, but the man who knew the order of the numbers had gone to
sea.
Three witnesses signed below, and a fourth made his mark, a small fish, which the notary thought
fit to describe.
Towards evening the fog lifted, and we saw that we had been at anchor all day beside another ship.
The botanist kept his pressed plants between the leaves of an old atlas, so that ferns grew over
the whole of the Pacific.
To take a true copy, lay the sheet flat, press the lid down gently, and wait until the light has
passed.
They quarrelled about the hedge, then about the ditch, and in the end about the word in the deed
that might have meant either.
My grandmother said that a house with straight doors is a house where nobody has lived.
The ink is made of oak galls, copperas, gum and rain water, and should stand a fortnight before it
is used.
Below the town the river is called by another name, and the people there do not believe that it is
the same.
"""

SENTENCES = [" ".join(text.split()) + "." for text in _PROSE.split(".\n") if text.strip()]
WORDS = [word for sentence in SENTENCES for word in sentence.replace(",", "").strip(".").split()]


def sentences(rng):
    """Sentences without end, each a list of words, in a random order."""
    while True:
        for index in rng.permutation(len(SENTENCES)):
            yield SENTENCES[index].split()


def few_words(rng, count):
    first = int(rng.integers(0, len(WORDS) - count))
    return " ".join(WORDS[first : first + count])
