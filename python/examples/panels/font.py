"""A font of strokes one pixel wide: that of stb_easy_font, which is in the public domain and which the program draws with."""

from typing import Iterator

# For each character from the space on: the columns it takes (and 16 where it lies one row lower), and where its strokes
# begin; the next character's begin where they end.
ADVANCES = bytes.fromhex(
    "0603050707070704040417171416131506060606060606060606131415161507090606060606060706050606060706060607"
    "06060706070707070604060417160416061606160616061315060317161616161515051617171716160503051600"
)
ACROSS_STARTS = bytes.fromhex(
    "00000101030608101113151617171819191b1c1e2122282e2f37393b3d4244494b4e505355575a5c60616364646565656667"
    "68696b6c6d6d6d7676787a7a7c8182838587898b90939697989ba0a0a4a5a7a9abadb2b3b4b4b4bdbfc4cbcbd2d6"
)
DOWN_STARTS = bytes.fromhex(
    "00000104070c13151617181f22242424272b2d3135393a3b3e404444454545454a51555a5b5f6061666a6b6e7374797d8185"
    "8c9195979ba0a5a7acb0b1b5b6b6b6b7bbbfc0c4c5c6cacecfd1d2d3d8dce0e4e8e9e9eaeef3f8f8fcfcfcfdfdfd"
)

# Strokes across and down: 3 bits of length, 1 that moves to the next column, 4 of the row.
ACROSS = bytes.fromhex(
    "612545541c3302120a316229411951692109610161252524510a626b036403633a3304633a0849510a3262084951040a3262"
    "08192141510a32114161192119310941144401411931290b690d654c0a320a32620b630a620b32630b320b6308393a036363"
    "6b0a0a0b0a630b0564294139294109115161036b09610161211909192964291a522a621b532a621a3352082923080a1a5272"
    "2a017208094939512961120808191a1a521a521a52291921521a3149235a1151294139294119515a72145449392931192141"
    "5109610161192141513921192919"
)
DOWN = bytes.fromhex(
    "0402080a0f080f21080f084952493929520a5212420a151d01411b081b0941080a32614a422a0a1539291d190e5149391a08"
    "081a420308080f13155a3a1a12421269591c4a110849391a15082a292a081c1608081e0708081a42150708081d0707150808"
    "083b0708080f1d08080e07392b0a520707192a190f0719290f1569691d0739391a15694961591c6107393a1a521239394a08"
    "1e0608080e033a5a3a0b074a2b4a0f0252022a4b2a0a4339290a07022a4a6a0f022308081d0708083b233308080f231e2308"
    "081e0708083c24082d070724082b082c1508082c2308082b1708082b2308081f150f1408081c123a593a1a155949591d1408"
    "081e07"
)


def width_of(text: str) -> int:
    """The columns that a line of text takes; it takes 12 rows."""
    return sum(ADVANCES[ord(each) - 32] & 15 for each in text)


def strokes(text: str) -> Iterator[tuple[int, int, int, int]]:
    """The strokes of a line of printable ASCII as boxes (x, y, width, height)."""
    left = 0
    for each in text:
        index = ord(each) - 32
        top = ADVANCES[index] >> 4 & 1
        for table, starts in ((ACROSS, ACROSS_STARTS), (DOWN, DOWN_STARTS)):
            x = left
            for stroke in table[starts[index] : starts[index + 1]]:
                length = stroke & 7
                x += stroke >> 3 & 1
                if length:
                    yield (x, top + (stroke >> 4), *((length, 1) if table is ACROSS else (1, length)))
        left += ADVANCES[index] & 15
