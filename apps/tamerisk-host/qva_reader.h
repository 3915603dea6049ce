// Reading attribute files (".qva") in the host. The format is public: a
// 22-character magic text, the version as four digits, then the material
// fields that the version knows, little-endian. A host reads it itself
// rather than linking anything of Tamerisk.
#ifndef TAMERISK_HOST_APP_QVA_READER_H
#define TAMERISK_HOST_APP_QVA_READER_H

#include <QString>

#include <tamerisk/attribute.h>

// Reads the material of the file at path. On success material is replaced
// (fields the file's version lacks at their defaults) and the result is
// empty; otherwise material is unchanged and the result says what is wrong.
QString ReadQvaFile(const QString& path, FZAttributeEx& material);

#endif
