#pragma once

#include <string_view>

// Every text that the program itself shows in a title bar, a message box or a menu.
// Typos are the program's own and are kept as they stand.
namespace lorekeep::texts {

inline constexpr std::u16string_view kProgramTitle = u"Lorekeep";
inline constexpr std::u16string_view kWindowCaption = u"The Lorekeep by Halvane";

inline constexpr std::u16string_view kSaveFailed = u"An error occured";
inline constexpr std::u16string_view kLoadFailed =
    u"An error occured - the file probably didn't exist";
inline constexpr std::u16string_view kFolderOrNameMissing =
    u"You must enter a schema file folder and schema name";
inline constexpr std::u16string_view kColourOutOfRange =
    u"You must enter values between 0 and 255 for the RGB boxes.";
inline constexpr std::u16string_view kColourOutOfRangeTitle = u"Error.";

// The schema location dialog.
inline constexpr std::u16string_view kLocationDialogTitle = u"Choose a schema location and name";
inline constexpr std::u16string_view kSchemaFilterDescription = u"Schemas (*.sch)";
inline constexpr std::u16string_view kSchemaFilterPattern = u"*.sch";
inline constexpr std::u16string_view kSchemaDefaultExtension = u"sch";

// The open dialog (Ctrl+O).
inline constexpr std::u16string_view kOpenDialogTitle = u"Open a schema file";
inline constexpr std::u16string_view kOpenFilterDescription = u"Schema files (*.sch)";

// The spelling entries of a text box's context menu, above the suggestions'.
inline constexpr std::u16string_view kAddToDictionary = u"Add to Dictionary";
inline constexpr std::u16string_view kIgnoreAll = u"Ignore All";

}  // namespace lorekeep::texts
