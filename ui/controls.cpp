#include "ui/controls.h"

#include "ui/text.h"
#include "ui/win_handles.h"

namespace ui {

HFONT CreateGroupTitleFont(const std::string& face) {
    LOGFONTA lf{};
    lf.lfHeight = 16;
    lf.lfWeight = FW_BOLD;  // 700
    lf.lfCharSet = DEFAULT_CHARSET;
    lstrcpynA(lf.lfFaceName, face.c_str(), LF_FACESIZE);
    return CreateFontIndirectA(&lf);
}

HIMAGELIST LoadImageStrip(UINT nBitmap, int cx, UINT colourFlags, COLORREF mask, int grow) {
    HIMAGELIST images = ImageList_Create(cx, 16, colourFlags | ILC_MASK, 0, grow);
    if (!images) return nullptr;
    UniqueGdiObject bitmap(
        LoadImageA(ResourceInstance(), MAKEINTRESOURCEA(nBitmap), IMAGE_BITMAP, 0, 0, LR_CREATEDIBSECTION));
    if (!bitmap || ImageList_AddMasked(images, static_cast<HBITMAP>(bitmap.get()), mask) < 0) {
        ImageList_Destroy(images);
        return nullptr;
    }
    return images;
}

}  // namespace ui
