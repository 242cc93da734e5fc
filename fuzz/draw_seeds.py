#!/usr/bin/python3
"""Draws small files of every kind that the command reads, one folder a fuzz target, to begin with.

  draw_seeds.py FOLDER

Takes Debian's python3-pil and libtiff-tools. What is worth keeping of them, and of what runs make of
them, stands in fuzz/corpus (scripts/fuzz --minimise).
"""
import io
import pathlib
import subprocess
import sys

from PIL import Image, ImageDraw

WIDTH, HEIGHT = 24, 20
DPI = (300, 200)


def picture(mode):
    """A crooked sheet with a line of print."""
    image = Image.new("RGB", (WIDTH, HEIGHT), (20, 30, 40))
    draw = ImageDraw.Draw(image)
    draw.polygon([(4, 2), (20, 4), (18, 17), (2, 15)], (230, 220, 210))
    draw.line([(6, 8), (15, 9)], (30, 20, 10))
    return image.convert(mode)


def saved(image, kind, **options):
    out = io.BytesIO()
    image.save(out, kind, **options)
    return out.getvalue()


def exif(orientation):
    block = Image.Exif()
    block[0x0112], block[0x010E], block[0x0131] = orientation, "sheet", "drawn"
    return block.tobytes()


def png():
    for mode in ("1", "L", "LA", "P", "RGB", "RGBA", "I"):
        yield mode, saved(picture(mode), "PNG", dpi=DPI, exif=exif(6))
    yield "grey-transparent", saved(picture("L"), "PNG", transparency=3)
    yield "palette-2", saved(picture("P").quantize(4), "PNG", bits=2)
    # A header and rows before they are packed: width, height, depth, colour, 0, 0, interlaced.
    for depth, colour, interlaced in ((1, 0, 0), (2, 0, 1), (4, 3, 0), (8, 0, 1), (8, 2, 0), (8, 4, 1), (8, 6, 0),
                                      (16, 0, 0), (16, 2, 1), (16, 6, 0)):
        header = (9).to_bytes(4, "big") + (7).to_bytes(4, "big") + bytes((depth, colour, 0, 0, interlaced))
        palette = bytes((6, 0, 0, 0, 255, 255, 255)) if colour == 3 else b"\0"
        rows = bytes(filter_kind % 5 if i == 0 else 37 * i & 255 for filter_kind in range(24) for i in range(80))
        yield f"rows-{depth}-{colour}-{interlaced}", header + palette + rows


def jpeg():
    for mode in ("L", "RGB", "CMYK"):
        yield mode, saved(picture(mode), "JPEG", dpi=DPI, exif=exif(8))
    yield "progressive", saved(picture("RGB"), "JPEG", progressive=True, icc_profile=b"\0" * 128)
    yield "samples", saved(picture("RGB"), "JPEG", subsampling=0, quality=30, comment="drawn")


def plain():
    for mode in ("1", "L", "P", "RGB"):
        yield f"bmp-{mode}", saved(picture(mode), "BMP", dpi=DPI)
    for mode in ("1", "L", "RGB"):
        yield f"pnm-{mode}", saved(picture(mode), "PPM")
    yield "pbm", b"P1\n# bits\n4 2\n1 0 1 0\n0 1 0 1\n"
    yield "pgm", b"P2 4 2 15\n0 1 2 3 4 5 6 15"
    yield "ppm", b"P3\n2 1\n255\n1 2 3 4 5 6\n"
    yield "pgm16", b"P5 2 2 4095 " + bytes(range(8))
    yield "gif", saved(picture("P"), "GIF")
    yield "tiff", saved(picture("L"), "TIFF")
    yield "png", saved(picture("L"), "PNG")
    yield "jpeg", saved(picture("L"), "JPEG")
    yield "pdf-on-disk-only", b"%PDF-1.4\n"


def tiff(folder):
    compressions = ("raw", "group3", "group4", "tiff_ccitt", "tiff_lzw", "packbits", "tiff_adobe_deflate", "jpeg")
    for compression in compressions:
        for mode in ("1", "L", "RGB", "P", "RGBA", "I;16"):
            try:
                source = picture("L").point(lambda level: 200 * level, "I").convert("I;16") if ";" in mode else picture(mode)
                yield f"{compression}-{mode}", saved(source, "TIFF", compression=compression, dpi=DPI)
            except (OSError, ValueError, RuntimeError):
                pass  # not every scheme takes every kind of samples
    yield "pages", saved(picture("L"), "TIFF", save_all=True, append_images=[picture("1"), picture("RGB")])
    for name, options in (("big", ["-8"]), ("tiles", ["-t", "-w", "16", "-l", "16"]), ("planes", ["-p", "separate"]),
                          ("strips", ["-r", "3", "-c", "lzw:2"]), ("other-end", ["-B", "-c", "g3:2d"]),
                          ("fill", ["-f", "lsb2msb", "-c", "g4"])):
        source, made = folder / "source.tif", folder / "made.tif"
        source.write_bytes(saved(picture("1" if "g" in options[-1] else "RGB"), "TIFF"))
        subprocess.run(["tiffcp", *options, source, made], check=True)
        yield name, made.read_bytes()


def pdf():
    yield "two", saved(picture("RGB"), "PDF", save_all=True, append_images=[picture("L")], resolution=200.0)
    yield "bits", saved(picture("1"), "PDF")
    # Without a table of its objects, which the reader then looks for.
    yield "plain", (b"%PDF-1.4\n1 0 obj<</Type/Catalog/Pages 2 0 R>>endobj\n"
                    b"2 0 obj<</Type/Pages/Kids[3 0 R]/Count 1/Rotate 90>>endobj\n"
                    b"3 0 obj<</Type/Page/Parent 2 0 R/MediaBox[0 0 9 9]/UserUnit 2/Contents 4 0 R"
                    b"/Resources<</XObject<</P 5 0 R>>>>>>endobj\n"
                    b"4 0 obj<</Length 22>>stream\nq 9 0 0 9 0 0 cm /P Do Q\nendstream endobj\n"
                    b"5 0 obj<</Subtype/Image/Width 2/Height 2/BitsPerComponent 8/ColorSpace/DeviceGray/Length 4>>"
                    b"stream\nabcd\nendstream endobj\ntrailer<</Root 1 0 R>>\n")


def journal():
    line = (b'{"command":"straighten","file":"a.png","dir":"in","page":%d,"pages":2,"rotate":90,"inputSize":9,'
            b'"inputModified":"2020-01-02T03:04:05.6Z","result":"straightened","confidence":"%s","angle":-1.25,'
            b'"corners":[[0,0],[9,0],[9,9],[0,9]],"reasons":[{"code":"sides-agree","words":"w","value":1.5}],'
            b'"output":"b.png","outputSha256":"00","options":"11","version":"0.1.0","decision":"apply"}\n')
    first, second = line % (1, b"sure"), line % (2, b"doubtful")
    error = b'{"file":"c","fileHex":"63ff","page":0,"pages":0,"result":"error","words":"no"}\n'
    for reader in range(4):
        yield f"journal-{reader}", bytes((reader,)) + first + second + first + error + b"torn"
        yield f"two-{reader}", bytes((reader,)) + first + second + b"\xff" + second.replace(b"apply", b"leave")


def profile():
    text = pathlib.Path(__file__).parent.parent.joinpath("docs", "sample-profile.ini").read_bytes()
    lines = [line for line in text.splitlines() if line and not line.startswith(b"#")]
    yield "sample", b"\0\3\0\5\0\x10\0\0" + b"\r\n".join(lines)
    yield "continued", b"\0\0\0\0\0\x10\0\1K = a+\n b+\n c\n[S]\nK=7\n#K=8\n\x1aK=9\n"


def main(folder):
    folder.mkdir(parents=True, exist_ok=True)
    kinds = {"png": png(), "jpeg": jpeg(), "picture_file": plain(), "tiff": tiff(folder), "pdf": pdf(),
             "journal": journal(), "profile": profile()}
    for target, files in kinds.items():
        place = folder / target
        place.mkdir(exist_ok=True)
        for name, data in files:
            (place / name.replace(";", "")).write_bytes(data)
    for name in ("source.tif", "made.tif"):
        (folder / name).unlink()


if __name__ == "__main__":
    main(pathlib.Path(sys.argv[1]))
