#pragma once
// GIF pictures, which Qt reads but does not write: the image quantised to 256
// colours (median cut) and encoded by giflib into memory, so the caller saves
// the bytes as it saves every other file.

#include <QString>

#include <string>

class QImage;

namespace zelko::ui {

// False with a reason for an empty image or one beyond GIF's 65,535 pixels a side.
bool encodeGif(const QImage& image, std::string& bytes, QString& error);

}  // namespace zelko::ui
