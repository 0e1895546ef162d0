#pragma once

#include <QColor>
#include <QFont>
#include <QRect>
#include <QWidget>
#include <array>
#include <string_view>

#include "ui/qt_text.hpp"

// Where every control of the main window stands, in twips, and the texts it
// shows. A twip is 1/15 of a device-independent pixel.
namespace lorekeep::ui::layout {

struct TwipRect {
    int left;
    int top;
    int width;
    int height;
};

inline constexpr int kTwipsPerPixel = 15;

// The toolkit's own default font, at which the twips above are exact.
inline constexpr qreal kDefaultPointSize = 9.0;

// A font's size in points, also when it is set in pixels.
qreal pointSize(const QFont& font);

// Turns twips into pixels for one window.
class Grid {
  public:
    explicit constexpr Grid(qreal scale = 1.0) : m_scale(scale) {}

    // The grid for a window whose controls use `font`. At the default font
    // or a smaller one it is the twips' own; a larger font scales every place
    // and size alike, as a form grows under large-font settings: at least in
    // proportion to the font's size, and as far as it takes for every caption
    // to fit its control in the full font.
    static Grid forFont(const QFont& font);

    int pixels(int twips) const { return static_cast<int>(twips * m_scale / kTwipsPerPixel); }
    QRect toPixels(TwipRect r) const {
        return {pixels(r.left), pixels(r.top), pixels(r.width), pixels(r.height)};
    }

  private:
    qreal m_scale;
};

// Puts a control at its place under its name: `where` is measured from the
// corner of what the tables measure it from, which lies `offset` pixels
// before the corner of the widget's parent.
template <typename W>
W* place(W* widget, const Grid& grid, TwipRect where, const QString& name,
         std::u16string_view tip = {}, QPoint offset = {}) {
    widget->setGeometry(grid.toPixels(where).translated(-offset));
    widget->setObjectName(name);
    if (!tip.empty()) {
        widget->setToolTip(toQString(tip));
    }
    return widget;
}

// A control array element's name: "cmdOK(2)".
inline QString indexedName(const char* name, int index) {
    return QStringLiteral("%1(%2)").arg(QLatin1String(name)).arg(index);
}

inline constexpr TwipRect kClientArea{0, 0, 6315, 7065};

// On the window.
inline constexpr TwipRect kFrame1{120, 0, 6135, 1455};
inline constexpr TwipRect kLabel4{120, 1560, 495, 255};
inline constexpr TwipRect kCboFont{720, 1560, 1575, 315};
inline constexpr TwipRect kCmdSave{2400, 1560, 1215, 255};
inline constexpr TwipRect kCmdLoad{3720, 1560, 1215, 255};
inline constexpr TwipRect kTabMain{120, 1920, 6135, 5055};

// In Frame1.
inline constexpr TwipRect kLabel1{120, 240, 5895, 255};
inline constexpr TwipRect kTxtLoc{120, 480, 5535, 285};
inline constexpr TwipRect kCmdLoc{5640, 480, 375, 255};
inline constexpr TwipRect kLabel2{120, 840, 5895, 255};
inline constexpr TwipRect kTxtName{120, 1080, 5895, 285};

// In tabMain, measured from its corner with the tab band included; the same
// on every language page.
inline constexpr int kTabRowHeight = 360;
inline constexpr int kTabsPerRow = 4;
inline constexpr TwipRect kCmdLeftJus{120, 720, 975, 255};
inline constexpr TwipRect kCmdRightJus{1080, 720, 975, 255};
inline constexpr TwipRect kCmdCent{120, 960, 975, 255};
inline constexpr TwipRect kCmdColor{1080, 960, 975, 255};
inline constexpr std::array<TwipRect, 3> kLabel5{
    {{2160, 720, 255, 255}, {2880, 720, 255, 255}, {3600, 720, 255, 255}}};
inline constexpr std::array<TwipRect, 3> kTxtColor{
    {{2280, 720, 495, 285}, {3000, 720, 495, 285}, {3720, 720, 495, 285}}};
inline constexpr TwipRect kCmdOK{2280, 960, 1935, 255};
inline constexpr TwipRect kCmdCopy{4320, 720, 1455, 495};
inline constexpr TwipRect kLabel3{120, 1320, 495, 255};
inline constexpr TwipRect kTxtTitle{600, 1320, 5175, 285};
inline constexpr TwipRect kLanguageEditor{120, 1680, 5655, 3255};
inline constexpr TwipRect kPreviewPane{120, 720, 5655, 4215};

// The preview panes show the game's light page in every desktop theme.
inline constexpr QColor kPreviewPageColour{255, 255, 255};
inline constexpr QColor kPreviewTextColour{0, 0, 0};

// What a screen reader announces for a control whose caption alone would not
// say it: a language's own controls carry the language in front ("French
// title", "German Red").
inline constexpr std::u16string_view kTxtLocName = u"Schema File Folder";
inline constexpr std::u16string_view kTxtNameName = u"Schema Name";
inline constexpr std::u16string_view kCboFontName = u"Font";
inline constexpr std::u16string_view kTabStripName = u"Pages";
inline constexpr std::array<std::u16string_view, 3> kColourBoxNames{u"Red", u"Green", u"Blue"};
inline constexpr std::u16string_view kTitleName = u"title";
inline constexpr std::u16string_view kEditorName = u"text";
inline constexpr std::u16string_view kPreviewName = u"preview";

// Captions, initial texts and tooltips.
inline constexpr std::u16string_view kFrame1Caption = u"Schema";
inline constexpr std::u16string_view kLabel1Caption = u"Schema File Folder:";
inline constexpr std::u16string_view kLabel2Caption = u"Schema Name: (Do not include extension)";
inline constexpr std::u16string_view kLabel3Caption = u"Title:";
inline constexpr std::u16string_view kLabel4Caption = u"Font:";
inline constexpr std::array<std::u16string_view, 3> kLabel5Captions{u"R", u"G", u"B"};
inline constexpr std::u16string_view kCmdLocCaption = u"...";
inline constexpr std::u16string_view kCmdSaveCaption = u"Save Schema";
inline constexpr std::u16string_view kCmdLoadCaption = u"Load Schema";
inline constexpr std::u16string_view kCmdLeftJusCaption = u"Left Justify";
inline constexpr std::u16string_view kCmdRightJusCaption = u"Right Justify";
inline constexpr std::u16string_view kCmdCentCaption = u"Center";
inline constexpr std::u16string_view kCmdColorCaption = u"Colour";
inline constexpr std::u16string_view kCmdOKCaption = u"OK";
inline constexpr std::u16string_view kCmdCopyCaption = u"Copy Text to all Other Languages";
inline constexpr std::u16string_view kColourBoxInitialText = u"0";
inline constexpr std::u16string_view kFontBoxInitialText = u"Font";  // the list: kFontNames

inline constexpr std::u16string_view kTxtLocTip = u"Folder where the schema file will be saved to";
inline constexpr std::u16string_view kTxtNameTip =
    u"The name of the schema file. No file extension is needed as it is added automatically.";
inline constexpr std::u16string_view kCboFontTip = u"Fonts compatible with the game";
inline constexpr std::u16string_view kCmdSaveTip = u"Save the Current Schema File";
inline constexpr std::u16string_view kCmdLoadTip = u"Load a Schema File";
inline constexpr std::u16string_view kTabMainTip = u"This is what your text will look like in-game";
inline constexpr std::u16string_view kCmdLeftJusTip = u"Adds Left Justified Markers";
inline constexpr std::u16string_view kCmdRightJusTip = u"Adds Right Justified Markers";
inline constexpr std::u16string_view kCmdCentTip = u"Adds Centered Markers";
inline constexpr std::array<std::u16string_view, 4> kCmdColorTips{
    u"Unlocks RGB Boxes for colour choice", u"Unlocks RGB Boxes for color choice",
    u"Unlocks RGB Boxes for color choice", u"Unlocks RGB Boxes for color choice"};
inline constexpr std::u16string_view kCmdOKTip = u"Adds Colour Markers";
inline constexpr std::array<std::u16string_view, 4> kCmdCopyTips{
    u"This copies the text currently in English to the French, German and Italian sections.",
    u"This copies the text currently in French to the English, German and Italian sections.",
    u"This copies the text currently in German to the French, English and Italian sections.",
    u"This copies the text currently in Italian to the French, German and English sections."};
inline constexpr std::u16string_view kTxtTitleTip = u"Title to appear at the top of your text.";
inline constexpr std::u16string_view kEditorTip =
    u"Type your text here. This text will be modified and saved to the schema file. You may add "
    u"special syntax here manually.";
// Only the English and French preview panes carry a tooltip.
inline constexpr std::array<std::u16string_view, 4> kPreviewTips{
    kTabMainTip, kTabMainTip, std::u16string_view(), std::u16string_view()};

}  // namespace lorekeep::ui::layout
