// The result codes of Tamerisk and the messages the user sees for them.
//
// An operation that can fail returns FZResult: Ok, or the reason it failed.
// The numbers are the ones files, the tools' exit codes and the host
// interface have always used; ResultCode gives them where an int must cross
// a boundary. The dialogs show ResultMessage in their error box, and the
// command-line tools print it after the code.
#ifndef TAMERISK_MATERIAL_RESULT_CODES_H
#define TAMERISK_MATERIAL_RESULT_CODES_H

enum class [[nodiscard]] FZResult : int {
    Ok = 0,
    Error = -1,          // some error
    OutOfMemory = -2,
    OutOfBounds = -3,    // index outside an array
    BadParameter = -4,   // unsuitable parameter
    OpenFailed = -5,     // file could not be opened
    ReadFailed = -6,     // data could not be read
    WriteFailed = -7,    // data could not be written
    BadFormat = -8,      // unsupported data format
    BadVersion = -9,     // file of a different version
    TooLarge = -10,      // maximum exceeded
    NoData = -11,
};

constexpr int ResultCode(FZResult result) { return static_cast<int>(result); }

// The message of a failure, UTF-8, as shown to the user; nullptr for Ok.
const char* ResultMessage(FZResult result);

#endif
