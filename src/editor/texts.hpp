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

// The Find and Replace dialog: its title, the accessible names of its
// boxes, options and buttons (captions too, but for the mnemonic), and what
// it says of a search.
inline constexpr std::u16string_view kFindDialogTitle = u"Find and Replace";
inline constexpr std::u16string_view kFindBox = u"Find";
inline constexpr std::u16string_view kReplaceWithBox = u"Replace with";
inline constexpr std::u16string_view kMatchCase = u"Match case";
inline constexpr std::u16string_view kWholeWords = u"Whole words";
inline constexpr std::u16string_view kSkipMarkers = u"Skip markers";
inline constexpr std::u16string_view kTitlesToo = u"Titles too";
inline constexpr std::u16string_view kAllLanguages = u"All languages";
inline constexpr std::u16string_view kThisLanguage = u"This language";
inline constexpr std::u16string_view kFindNext = u"Find Next";
inline constexpr std::u16string_view kFindPrevious = u"Find Previous";
inline constexpr std::u16string_view kReplace = u"Replace";
inline constexpr std::u16string_view kReplaceAll = u"Replace All";
inline constexpr std::u16string_view kReplaceAllCaption = u"Replace &All";
inline constexpr std::u16string_view kClose = u"Close";
inline constexpr std::u16string_view kSearchWrapped = u"Search wrapped";
inline constexpr std::u16string_view kNoMatches = u"No matches";
// "3 of 12"; "12 replaced in 3 languages", "1 replaced in 1 language".
inline constexpr std::u16string_view kMatchOf = u" of ";
inline constexpr std::u16string_view kReplacedIn = u" replaced in ";
inline constexpr std::u16string_view kOneLanguage = u" language";
inline constexpr std::u16string_view kLanguagesCounted = u" languages";
inline constexpr std::u16string_view kReplaceTooLong =
    u"Nothing replaced: a text would grow beyond its limit";

}  // namespace lorekeep::texts
