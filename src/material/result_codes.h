// The result codes of Tamerisk and the messages the user sees for them.
//
// Operations return 0 on success and one of these negative codes on failure.
// The dialogs show ResultMessage(code) in their error box, and the
// command-line tools print it after the code.
#ifndef TAMERISK_MATERIAL_RESULT_CODES_H
#define TAMERISK_MATERIAL_RESULT_CODES_H

inline constexpr int kResultOk = 0;
inline constexpr int kResultError = -1;           // some error
inline constexpr int kResultOutOfMemory = -2;
inline constexpr int kResultOutOfBounds = -3;     // index outside an array
inline constexpr int kResultBadParameter = -4;    // unsuitable parameter
inline constexpr int kResultOpenFailed = -5;      // file could not be opened
inline constexpr int kResultReadFailed = -6;      // data could not be read
inline constexpr int kResultWriteFailed = -7;     // data could not be written
inline constexpr int kResultBadFormat = -8;       // unsupported data format
inline constexpr int kResultBadVersion = -9;      // file of a different version
inline constexpr int kResultTooLarge = -10;       // maximum exceeded
inline constexpr int kResultNoData = -11;

// The message of a failure code, UTF-8, as shown to the user; nullptr for 0
// and for every value outside -11 to -1, which show nothing.
const char* ResultMessage(int code);

#endif
