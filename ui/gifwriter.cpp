#include "ui/gifwriter.h"

#include <QImage>

#include <gif_lib.h>

#include <memory>
#include <vector>

namespace zelko::ui {

namespace {

constexpr int kGifColours = 256;
constexpr int kGifLargestSide = 65535;

int appendBytes(GifFileType* gif, const GifByteType* data, int length)
{
    static_cast<std::string*>(gif->UserData)->append(reinterpret_cast<const char*>(data),
                                                     static_cast<std::size_t>(length));
    return length;
}

QString gifError(int code) { return QString::fromUtf8(GifErrorString(code)); }

}  // namespace

bool encodeGif(const QImage& image, std::string& bytes, QString& error)
{
    if (image.isNull() || image.width() > kGifLargestSide || image.height() > kGifLargestSide) {
        error = QStringLiteral("The picture is empty or too large for a GIF file.");
        return false;
    }
    const QImage rgb = image.convertToFormat(QImage::Format_RGB888);
    const auto width = static_cast<std::size_t>(rgb.width());
    const auto height = static_cast<std::size_t>(rgb.height());
    std::vector<GifByteType> red(width * height), green(width * height), blue(width * height);
    for (std::size_t y = 0; y < height; ++y) {
        const uchar* line = rgb.constScanLine(static_cast<int>(y));
        for (std::size_t x = 0; x < width; ++x) {
            red[y * width + x] = line[3 * x];
            green[y * width + x] = line[3 * x + 1];
            blue[y * width + x] = line[3 * x + 2];
        }
    }
    std::vector<GifByteType> indices(width * height);
    GifColorType colours[kGifColours]{};
    int colourCount = kGifColours;
    if (GifQuantizeBuffer(static_cast<unsigned>(width), static_cast<unsigned>(height), &colourCount, red.data(),
                          green.data(), blue.data(), indices.data(), colours) != GIF_OK) {
        error = QStringLiteral("The picture could not be reduced to 256 colours.");
        return false;
    }

    std::string encoded;
    int code = 0;
    GifFileType* gif = EGifOpen(&encoded, appendBytes, &code);
    if (gif == nullptr) {
        error = gifError(code);
        return false;
    }
    // The map is copied into the file's screen description.
    const std::unique_ptr<ColorMapObject, void (*)(ColorMapObject*)> map(GifMakeMapObject(kGifColours, colours),
                                                                         GifFreeMapObject);
    bool written = map && EGifPutScreenDesc(gif, rgb.width(), rgb.height(), 8, 0, map.get()) == GIF_OK
                   && EGifPutImageDesc(gif, 0, 0, rgb.width(), rgb.height(), false, nullptr) == GIF_OK;
    for (std::size_t y = 0; written && y < height; ++y)
        written = EGifPutLine(gif, indices.data() + y * width, static_cast<int>(width)) == GIF_OK;
    if (!written)
        code = gif->Error;
    int closeCode = 0;
    if (EGifCloseFile(gif, &closeCode) != GIF_OK && written) {
        written = false;
        code = closeCode;
    }
    if (!written) {
        error = gifError(code);
        return false;
    }
    bytes = std::move(encoded);
    return true;
}

}  // namespace zelko::ui
