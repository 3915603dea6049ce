// The command line of tamerisk-render: one picture (--output), or a batch
// of materials into a directory (--output-dir and the files).
#pragma once

#include <QCommandLineParser>
#include <QString>
#include <QStringList>

#include <cstdint>
#include <optional>

enum class Format { Png, Ppm };

struct Options {
    QString material;
    std::int32_t shape = 1;
    std::int32_t width = 120;
    std::int32_t height = 120;
    bool colorBind = false;
    std::optional<std::uint32_t> seed;
    int threads = 0;
    QString output;
    Format format = Format::Png;
    QString outputDir;   // a batch when not empty
    QStringList files;   // the batch's materials
};

// Fills options from the command line; false with a message on bad input.
// --help prints the usage and ends the program.
bool ParseOptions(QCommandLineParser& parser, const QStringList& arguments, Options& options, QString& error);
