#!/usr/bin/env python3
"""Writes a folder of about 200 mixed pictures for scripts/soak.sh:
valid pictures (the viewer's sample photos and small generated ones),
truncated and zero-byte files, pictures with the wrong extension, headers
claiming huge dimensions, animated GIFs and tiny DNG files.
    soak-pictures.py FOLDER"""
import os
import shutil
import struct
import sys
import zlib

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
PHOTOS = os.path.join(ROOT, "assets", "Photos")
DNGS = os.path.join(ROOT, "fuzz", "seeds", "raw_extract")


def chunk(kind, data):
    return struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data) & 0xFFFFFFFF)


def png(width, height, seed):
    rows = b"".join(b"\0" + bytes(((x * 7 + y * 3 + seed) & 0xFF) for x in range(width * 3)) for y in range(height))
    header = struct.pack(">IIBBBBB", width, height, 8, 2, 0, 0, 0)
    return b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", header) + chunk(b"IDAT", zlib.compress(rows)) + chunk(b"IEND", b"")


def huge_png():
    header = struct.pack(">IIBBBBB", 100000, 100000, 8, 2, 0, 0, 0)
    return b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", header) + chunk(b"IDAT", zlib.compress(b"\0" * 64)) + chunk(b"IEND", b"")


def bmp(width, height, seed):
    row = (width * 3 + 3) & ~3
    pixels = b"".join(bytes(((x + y + seed) & 0xFF) for x in range(width * 3)).ljust(row, b"\0") for y in range(height))
    info = struct.pack("<IiiHHIIiiII", 40, width, height, 1, 24, 0, len(pixels), 2835, 2835, 0, 0)
    return b"BM" + struct.pack("<IHHI", 14 + 40 + len(pixels), 0, 0, 54) + info + pixels


def huge_bmp():
    info = struct.pack("<IiiHHIIiiII", 40, 60000, 60000, 1, 24, 0, 0, 2835, 2835, 0, 0)
    return b"BM" + struct.pack("<IHHI", 54 + 16, 0, 0, 54) + info + b"\0" * 16


def gif(frames, width, height):
    """An animated GIF of `frames` frames, each a solid colour, uncompressed codes."""
    out = b"GIF89a" + struct.pack("<HHBBB", width, height, 0xF1, 0, 0)
    out += bytes([0, 0, 0, 255, 0, 0, 0, 255, 0, 0, 0, 255])  # four colours
    out += b"\x21\xFF\x0BNETSCAPE2.0\x03\x01\x00\x00\x00"
    for f in range(frames):
        out += b"\x21\xF9\x04\x00" + struct.pack("<H", 10) + b"\x00\x00"
        out += b"\x2C" + struct.pack("<HHHHB", 0, 0, width, height, 0)
        # LZW with code size 2: a clear code before every pixel keeps codes 3 bits wide.
        codes, bits, nbits = [], 0, 0
        for _ in range(width * height):
            for code in (4, f % 4):
                bits |= code << nbits
                nbits += 3
                while nbits >= 8:
                    codes.append(bits & 0xFF)
                    bits >>= 8
                    nbits -= 8
        bits |= 5 << nbits
        nbits += 3
        while nbits > 0:
            codes.append(bits & 0xFF)
            bits >>= 8
            nbits -= 8
        data = bytes(codes)
        out += b"\x02" + b"".join(bytes([len(data[i:i + 255])]) + data[i:i + 255] for i in range(0, len(data), 255)) + b"\0"
    return out + b"\x3B"


def main(folder):
    os.makedirs(folder, exist_ok=True)
    made = 0

    def write(name, data):
        nonlocal made
        with open(os.path.join(folder, name), "wb") as f:
            f.write(data)
        made += 1

    photos = sorted(os.listdir(PHOTOS))
    for i in range(4):
        for name in photos:
            shutil.copy(os.path.join(PHOTOS, name), os.path.join(folder, f"photo{i}-{name}"))
            made += 1
            data = open(os.path.join(PHOTOS, name), "rb").read()
            write(f"cut{i}-{name}", data[: len(data) * (i + 1) // 6])
    stem = lambda n: os.path.splitext(n)[0]
    for name in photos:
        data = open(os.path.join(PHOTOS, name), "rb").read()
        write(f"wrong-{stem(name)}.bmp", data)
        write(f"wrong-{stem(name)}.tif", data)
    for i in range(50):
        write(f"gen{i:02}.png", png(16 + i * 5, 9 + i * 3, i))
        write(f"gen{i:02}.bmp", bmp(7 + i, 5 + i * 2, i))
    for i in range(10):
        write(f"empty{i}.jpg", b"")
        write(f"anim{i}.gif", gif(2 + i, 6 + i, 4 + i))
    for i in range(3):
        write(f"huge{i}.png", huge_png())
        write(f"huge{i}.bmp", huge_bmp())
    for name in sorted(os.listdir(DNGS)):
        for i in range(3):
            shutil.copy(os.path.join(DNGS, name), os.path.join(folder, f"raw{i}-{name}"))
            made += 1
    print(f"soak-pictures: {made} files in {folder}")


if __name__ == "__main__":
    main(sys.argv[1])
