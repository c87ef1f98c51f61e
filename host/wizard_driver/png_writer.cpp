#include "host/wizard_driver/png_writer.h"

#include <cstdint>
#include <cstdio>
#include <vector>

namespace sentrel_gui {
namespace {

uint32_t Crc(const uint8_t* data, size_t length, uint32_t crc = 0xFFFFFFFFu) {
    static uint32_t table[256];
    static bool ready = false;
    if (!ready) {
        for (uint32_t n = 0; n < 256; ++n) {
            uint32_t c = n;
            for (int k = 0; k < 8; ++k) c = (c & 1) ? 0xEDB88320u ^ (c >> 1) : c >> 1;
            table[n] = c;
        }
        ready = true;
    }
    for (size_t i = 0; i < length; ++i) crc = table[(crc ^ data[i]) & 0xFF] ^ (crc >> 8);
    return crc;
}

void Put32(std::vector<uint8_t>& out, uint32_t v) {
    for (int s = 24; s >= 0; s -= 8) out.push_back(static_cast<uint8_t>(v >> s));
}

void Chunk(std::vector<uint8_t>& out, const char* type, const std::vector<uint8_t>& data) {
    Put32(out, static_cast<uint32_t>(data.size()));
    std::vector<uint8_t> body(type, type + 4);
    body.insert(body.end(), data.begin(), data.end());
    out.insert(out.end(), body.begin(), body.end());
    Put32(out, Crc(body.data(), body.size()) ^ 0xFFFFFFFFu);
}

std::vector<uint8_t> EncodePng(int width, int height, const std::vector<uint8_t>& rgb) {
    std::vector<uint8_t> raw;  // filter byte 0 before each row
    for (int y = 0; y < height; ++y) {
        raw.push_back(0);
        raw.insert(raw.end(), rgb.begin() + static_cast<ptrdiff_t>(y) * width * 3,
                   rgb.begin() + static_cast<ptrdiff_t>(y + 1) * width * 3);
    }
    std::vector<uint8_t> z = {0x78, 0x01};  // zlib header, stored blocks
    uint32_t a = 1, b = 0;
    for (uint8_t c : raw) {
        a = (a + c) % 65521;
        b = (b + a) % 65521;
    }
    for (size_t pos = 0; pos < raw.size() || pos == 0;) {
        const size_t n = std::min<size_t>(65535, raw.size() - pos);
        const bool last = pos + n >= raw.size();
        z.push_back(last ? 1 : 0);
        z.push_back(static_cast<uint8_t>(n & 0xFF));
        z.push_back(static_cast<uint8_t>(n >> 8));
        z.push_back(static_cast<uint8_t>(~n & 0xFF));
        z.push_back(static_cast<uint8_t>((~n >> 8) & 0xFF));
        z.insert(z.end(), raw.begin() + static_cast<ptrdiff_t>(pos), raw.begin() + static_cast<ptrdiff_t>(pos + n));
        pos += n;
        if (last) break;
    }
    Put32(z, (b << 16) | a);

    std::vector<uint8_t> png = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};
    std::vector<uint8_t> header;
    Put32(header, static_cast<uint32_t>(width));
    Put32(header, static_cast<uint32_t>(height));
    header.insert(header.end(), {8, 2, 0, 0, 0});  // 8-bit RGB
    Chunk(png, "IHDR", header);
    Chunk(png, "IDAT", z);
    Chunk(png, "IEND", {});
    return png;
}

}  // namespace

bool SaveWindowPng(HWND hwnd, const std::string& path) {
    RECT rc{};
    if (!GetWindowRect(hwnd, &rc)) return false;
    const int width = rc.right - rc.left, height = rc.bottom - rc.top;
    if (width <= 0 || height <= 0) return false;
    HDC screen = GetDC(nullptr);
    HDC memory = CreateCompatibleDC(screen);
    BITMAPINFO info{};
    info.bmiHeader.biSize = sizeof info.bmiHeader;
    info.bmiHeader.biWidth = width;
    info.bmiHeader.biHeight = -height;  // top-down
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 32;
    void* bits = nullptr;
    HBITMAP bitmap = CreateDIBSection(screen, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
    bool ok = false;
    if (bitmap && bits) {
        HGDIOBJ old = SelectObject(memory, bitmap);
        BitBlt(memory, 0, 0, width, height, screen, rc.left, rc.top, SRCCOPY);
        GdiFlush();
        std::vector<uint8_t> rgb(static_cast<size_t>(width) * height * 3);
        const auto* px = static_cast<const uint8_t*>(bits);
        for (size_t i = 0; i < static_cast<size_t>(width) * height; ++i) {
            rgb[3 * i] = px[4 * i + 2];
            rgb[3 * i + 1] = px[4 * i + 1];
            rgb[3 * i + 2] = px[4 * i];
        }
        SelectObject(memory, old);
        const std::vector<uint8_t> png = EncodePng(width, height, rgb);
        if (FILE* f = std::fopen(path.c_str(), "wb")) {
            ok = std::fwrite(png.data(), 1, png.size(), f) == png.size();
            std::fclose(f);
        }
    }
    if (bitmap) DeleteObject(bitmap);
    DeleteDC(memory);
    ReleaseDC(nullptr, screen);
    return ok;
}

}  // namespace sentrel_gui
