// Packs the pictures of this folder into the zlib streams declared in streams.h.
//
//   makestreams DIRECTORY OUTPUT.cpp

#include "pixelformats.h"
#include "zlibstream.h"

#include <QFile>
#include <QImage>
#include <QString>
#include <QTextStream>

#include <cstdio>
#include <exception>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace {

using Bytes = std::vector<std::uint8_t>;

// Width and height of the logo animation's pieces, which stand one below the other in the drawing.
const std::vector<std::pair<int, int>> pieceSizes = {
    {74, 145}, {110, 218}, {28, 29}, {28, 29},   {30, 28},   {30, 29},  {30, 28},
    {30, 28},  {28, 28},   {28, 28}, {400, 149}, {194, 120}, {602, 29},
};

QImage load(const QString& directory, const char* name, int width, int height) {
    const QString path = directory + QLatin1Char('/') + QLatin1String(name);
    const QImage image(path);
    if (image.width() != width || image.height() != height) {
        throw std::runtime_error(path.toStdString() + ": must be a picture of " +
                                 std::to_string(width) + " x " + std::to_string(height) +
                                 " pixels");
    }
    return image.convertToFormat(QImage::Format_ARGB32);
}

Bytes logoPieces(const QString& directory) {
    const QImage sheet = load(directory, "logo-pieces.png", 602, 888);
    Bytes bytes;
    int top = 0;
    for (const auto& [width, height] : pieceSizes) {
        const Bytes piece = toL4(sheet.copy(0, top, width, height));
        bytes.insert(bytes.end(), piece.begin(), piece.end());
        top += height;
    }
    return bytes;
}

void writeStream(QTextStream& out, const char* name, const Bytes& pixels, std::size_t length) {
    Bytes stream;
    try {
        stream = zlibStreamOfLength(pixels, length);
    } catch (const std::exception& error) {
        throw std::runtime_error(std::string(name) + ": " + error.what());
    }
    out << "const std::array<unsigned char, " << length << "> " << name << " = {{";
    for (std::size_t i = 0; i < stream.size(); ++i) {
        out << (i % 20 == 0 ? "\n    " : "") << stream[i] << ',';
    }
    out << "\n}};\n\n";
}

void makeStreams(const QString& directory, const QString& output) {
    QFile file(output);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Text)) {
        throw std::runtime_error(output.toStdString() + ": " + file.errorString().toStdString());
    }
    QTextStream out(&file);
    out << "// Made by makestreams from the pictures in assets/. Do not edit.\n"
           "#include \"streams.h\"\n\nnamespace assets {\n\n";
    writeStream(out, "logo", toArgb4(load(directory, "logo.png", 470, 85)), 6025);
    writeStream(out, "logoPieces", logoPieces(directory), 6224);
    writeStream(out, "derivativeIcon", toArgb4(load(directory, "derivative-icon.png", 18, 28)),
                212);
    writeStream(out, "integralIcon", toArgb4(load(directory, "integral-icon.png", 24, 36)), 274);
    out << "} // namespace assets\n";
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 3) {
        std::fprintf(stderr, "usage: makestreams DIRECTORY OUTPUT.cpp\n");
        return 2;
    }
    try {
        makeStreams(QString::fromLocal8Bit(argv[1]), QString::fromLocal8Bit(argv[2]));
    } catch (const std::exception& error) {
        std::fprintf(stderr, "makestreams: %s\n", error.what());
        return 1;
    }
    return 0;
}
