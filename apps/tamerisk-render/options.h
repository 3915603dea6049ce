// The command line of tamerisk-render: one picture (--output), or a batch
// of materials into a directory (--output-dir and the files).
//
// File names are the bytes the system passed: a name need not be UTF-8, and
// two names that differ in a byte stay two names. They are decoded only to
// be shown.
#pragma once

#include <QByteArray>
#include <QCommandLineParser>
#include <QList>
#include <QString>

#include <cstdint>
#include <optional>

enum class Format { Png, Ppm };

struct Options {
    QByteArray material;
    std::int32_t shape = 1;
    std::int32_t width = 120;
    std::int32_t height = 120;
    bool colorBind = false;
    std::optional<std::uint32_t> seed;
    int threads = 0;
    QByteArray output;
    Format format = Format::Png;
    bool inPlace = false;      // output written into the file itself
    QByteArray outputDir;      // a batch when not empty
    QList<QByteArray> files;   // the batch's materials
};

// Fills options from the command line (argv, program name first); false
// with a message on bad input. --help prints the usage and ends the program.
bool ParseOptions(QCommandLineParser& parser, const QList<QByteArray>& arguments, Options& options,
                  QString& error);
