#include "e2e/Picture.h"

#include "e2e/Unmet.h"

#include <QImage>
#include <QString>

#include <set>

namespace stavelin::e2e {

std::size_t Picture::colourCount() const
{
    return std::set<std::uint32_t>(pixels.begin(), pixels.end()).size();
}

void Picture::savePng(const std::filesystem::path &file) const
{
    const QImage image(reinterpret_cast<const uchar *>(pixels.data()), width, height, width * 4,
                       QImage::Format_RGB32);
    if (!image.save(QString::fromStdString(file), "PNG")) {
        throw Unmet("cannot write " + file.string());
    }
}

} // namespace stavelin::e2e
