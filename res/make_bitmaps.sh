#!/bin/bash
# Makes the device panel's bitmaps with ImageMagick; the results are committed.
# tree_images.bmp: 7 images of 16x16 in one 112x16 24-bit strip, white (0xFFFFFF) transparent:
#   0 root (globe), 1 submap (folder), 2 domain (network), 3 unused, 4 node of host type 7
#   (lab flask), 5 and 6 unused. The pictures are ours.
# header_checks.bmp: 4 images of 16x16 in one 64x16 8-bit strip, magenta (0xFF00FF)
#   transparent: 0 empty, 1 unchecked box, 2 checked box, 3 greyed box.
set -euo pipefail
cd "$(dirname "$0")"
convert -size 112x16 xc:white +antialias \
  -fill '#3c78d8' -stroke '#1c4587' -draw 'circle 7.5,7.5 7.5,1' \
  -stroke '#a4c2f4' -fill none -draw 'line 2,7.5 13,7.5' -draw 'ellipse 7.5,7.5 3,6.5 0,360' \
  -stroke '#7f6000' -fill '#f1c232' -draw 'rectangle 17,4 30,13' -draw 'rectangle 17,3 22,5' \
  -stroke '#274e13' -fill '#6aa84f' -draw 'rectangle 38,2 42,6' -draw 'rectangle 33,10 37,14' -draw 'rectangle 43,10 47,14' \
  -stroke '#274e13' -draw 'line 40,6 40,8' -draw 'line 35,8 45,8' -draw 'line 35,8 35,10' -draw 'line 45,8 45,10' \
  -stroke '#666666' -fill '#cccccc' -draw 'rectangle 50,3 61,12' \
  -stroke '#990000' -fill '#e06666' -draw 'polygon 69,2 74,2 74,6 78,13 65,13 69,6' \
  -stroke '#666666' -fill '#b7b7b7' -draw 'circle 87.5,7.5 87.5,3' \
  -stroke '#666666' -fill '#d9d9d9' -draw 'rectangle 98,4 109,11' \
  -type truecolor BMP3:tree_images.bmp
convert -size 64x16 xc:magenta +antialias \
  -stroke '#808080' -fill white -draw 'rectangle 17,1 29,13' \
  -stroke '#808080' -fill white -draw 'rectangle 33,1 45,13' \
  -stroke black -strokewidth 2 -fill none -draw 'polyline 36,7 38,10 43,4' \
  -strokewidth 1 -stroke '#808080' -fill '#c0c0c0' -draw 'rectangle 49,1 61,13' \
  -depth 8 RGB:- | python3 -c '
# ImageMagick writes a palette of 16 colours as 4-bit; the header's image list is made from an 8-bit bitmap.
import struct, sys
w, h = 64, 16
px = sys.stdin.buffer.read()
colours = []
idx = []
for i in range(w * h):
    c = px[3 * i:3 * i + 3]
    if c not in colours: colours.append(c)
    idx.append(colours.index(c))
palette = b"".join(bytes((c[2], c[1], c[0], 0)) for c in colours) + bytes(4 * (256 - len(colours)))
rows = b"".join(bytes(idx[y * w:(y + 1) * w]) for y in reversed(range(h)))
info = struct.pack("<IiiHHIIiiII", 40, w, h, 1, 8, 0, len(rows), 2835, 2835, 256, 0)
off = 14 + 40 + len(palette)
sys.stdout.buffer.write(b"BM" + struct.pack("<IHHI", off + len(rows), 0, 0, off) + info + palette + rows)
' > header_checks.bmp
identify tree_images.bmp header_checks.bmp
