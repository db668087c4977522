// Picture objects of the system, made of bitmaps and read as such.
#include "automation/windows/com_raster.h"
#include "zkr13n/dib.h"

#include <olectl.h>

#include <algorithm>
#include <cstdlib>

namespace zkr::automation {

namespace {

// A memory context with a bitmap selected, white all over.
class Canvas {
  public:
    Canvas(HDC screen, int width, int height)
        : context_(CreateCompatibleDC(screen)), bitmap_(CreateCompatibleBitmap(screen, width, height)) {
        if (!*this) return;
        before_ = SelectObject(context_, bitmap_);
        PatBlt(context_, 0, 0, width, height, WHITENESS);
    }
    ~Canvas() {
        Leave();
        if (context_ != nullptr) DeleteDC(context_);
        if (bitmap_ != nullptr) DeleteObject(bitmap_);
    }
    Canvas(const Canvas&) = delete;
    Canvas& operator=(const Canvas&) = delete;

    explicit operator bool() const { return context_ != nullptr && bitmap_ != nullptr; }
    HDC context() const { return context_; }
    HBITMAP bitmap() const { return bitmap_; }
    // Takes the bitmap out of the context, so that it can be read.
    void Leave() {
        if (before_ != nullptr) SelectObject(context_, before_);
        before_ = nullptr;
    }

  private:
    HDC context_;
    HBITMAP bitmap_;
    HGDIOBJ before_ = nullptr;
};

class Screen {
  public:
    Screen() : context_(GetDC(nullptr)) {}
    ~Screen() {
        if (context_ != nullptr) ReleaseDC(nullptr, context_);
    }
    Screen(const Screen&) = delete;
    Screen& operator=(const Screen&) = delete;
    HDC context() const { return context_; }

  private:
    HDC context_;
};

ReturnCode ReadBitmap(IPicture& picture, BitmapHandle* made) {
    OLE_HANDLE bitmap = 0, palette = 0;
    if (FAILED(picture.get_Handle(&bitmap)) || bitmap == 0) return Z_ERROR_BITMAP;
    picture.get_hPal(&palette);
    // Handles of the system have 32 significant bits, with their sign.
    return Z_ConvertFromDDB(nullptr, made,
                            reinterpret_cast<HBITMAP>(static_cast<intptr_t>(static_cast<int32_t>(bitmap))),
                            reinterpret_cast<HPALETTE>(static_cast<intptr_t>(static_cast<int32_t>(palette))));
}

// Draws a picture of another kind at the screen's resolution. Its sizes are hundredths of a millimetre.
ReturnCode ReadDrawing(IPicture& picture, BitmapHandle* made) {
    OLE_XSIZE_HIMETRIC width = 0;
    OLE_YSIZE_HIMETRIC height = 0;
    if (FAILED(picture.get_Width(&width)) || FAILED(picture.get_Height(&height))) return Z_ERROR_BITMAP;
    const Screen screen;
    if (screen.context() == nullptr) return Z_ERROR_MEMORY;
    const int columns =
        std::max(1, std::abs(MulDiv(width, GetDeviceCaps(screen.context(), LOGPIXELSX), 2540)));
    const int rows = std::max(1, std::abs(MulDiv(height, GetDeviceCaps(screen.context(), LOGPIXELSY), 2540)));
    Canvas canvas(screen.context(), columns, rows);
    if (!canvas) return Z_ERROR_MEMORY;
    // A picture's rows count from the bottom.
    if (FAILED(picture.Render(canvas.context(), 0, 0, columns, rows, 0, height, width, -height, nullptr)))
        return Z_ERROR_GENERAL;
    canvas.Leave();
    return Z_ConvertFromDDB(nullptr, made, canvas.bitmap(), nullptr);
}

} // namespace

ReturnCode ComRaster::MakePicture(HBITMAP bitmap, HPALETTE palette, intptr_t* picture) {
    PICTDESC description = {};
    description.cbSizeofstruct = sizeof description;
    description.picType = PICTYPE_BITMAP;
    description.bmp.hbitmap = bitmap;
    description.bmp.hpal = palette;
    void* made = nullptr;
    if (SUCCEEDED(OleCreatePictureIndirect(&description, IID_IDispatch, TRUE, &made))) {
        *picture = reinterpret_cast<intptr_t>(made);
        return Z_SUCCESS;
    }
    DeleteObject(bitmap);
    if (palette != nullptr) DeleteObject(palette);
    return Z_ERROR_MEMORY;
}

ReturnCode ComRaster::ReadPicture(intptr_t picture, BitmapHandle* made) {
    auto* unknown = reinterpret_cast<IUnknown*>(picture);
    if (unknown == nullptr) return Z_ERROR_ARGUMENT;
    Pointer<IPicture> drawn;
    short kind = PICTYPE_NONE;
    if (FAILED(unknown->QueryInterface(IID_IPicture, drawn.OutUntyped()))) return Z_ERROR_ARGUMENT;
    if (FAILED(drawn->get_Type(&kind))) return Z_ERROR_BITMAP;
    return kind == PICTYPE_BITMAP ? ReadBitmap(*drawn.get(), made) : ReadDrawing(*drawn.get(), made);
}

} // namespace zkr::automation
