#include "ui/window_layout.hpp"

#include <QFontMetricsF>
#include <algorithm>
#include <cmath>
#include <vector>

#include "schema/language.hpp"
#include "schema/schema_document.hpp"

namespace lorekeep::ui::layout {

namespace {

// A caption and the box it must fit. The paddings are pixels of the box that
// the control keeps for itself (insets, frames, an arrow) and that do not grow
// with the grid.
struct Fit {
    std::u16string_view text;
    int width;   // twips
    int height;  // twips
    qreal padding = 0;
    int lines = 1;
    qreal heightPadding = 0;
};

// The width of `text` broken at the one space that makes its wider line the
// narrowest.
qreal twoLineWidth(const QFontMetricsF& metrics, const QString& text) {
    qreal best = metrics.horizontalAdvance(text);
    for (qsizetype at = text.indexOf(u' '); at >= 0; at = text.indexOf(u' ', at + 1)) {
        best = std::min(best, std::max(metrics.horizontalAdvance(text.left(at)),
                                       metrics.horizontalAdvance(text.mid(at + 1))));
    }
    return best;
}

}  // namespace

qreal pointSize(const QFont& font) {
    return font.pointSizeF() > 0 ? font.pointSizeF() : font.pixelSize() * 72.0 / 96.0;
}

Grid Grid::forFont(const QFont& font) {
    const qreal points = pointSize(font);
    if (points <= kDefaultPointSize) {
        return Grid(1.0);
    }
    // Pixels that the controls keep around their text, whatever the font.
    constexpr qreal kButtonPadding = 6;
    constexpr qreal kTabPadding = 10;
    constexpr qreal kComboPadding = 28;
    constexpr qreal kLineEditPadding = 6;
    // A colour box covers its label from 120 twips on.
    constexpr int kColourLabelShown = 120;
    std::vector<Fit> fits{
        {kLabel1Caption, kLabel1.width, kLabel1.height},
        {kLabel2Caption, kLabel2.width, kLabel2.height},
        {kLabel3Caption, kLabel3.width, kLabel3.height},
        {kLabel4Caption, kLabel4.width, kLabel4.height},
        {kFrame1Caption, kFrame1.width, kTxtLoc.top, 2 * kTabPadding},
        {kCmdLocCaption, kCmdLoc.width, kCmdLoc.height, kButtonPadding},
        {kCmdSaveCaption, kCmdSave.width, kCmdSave.height, kButtonPadding},
        {kCmdLoadCaption, kCmdLoad.width, kCmdLoad.height, kButtonPadding},
        {kCmdLeftJusCaption, kCmdLeftJus.width, kCmdLeftJus.height, kButtonPadding},
        {kCmdRightJusCaption, kCmdRightJus.width, kCmdRightJus.height, kButtonPadding},
        {kCmdCentCaption, kCmdCent.width, kCmdCent.height, kButtonPadding},
        {kCmdColorCaption, kCmdColor.width, kCmdColor.height, kButtonPadding},
        {kCmdOKCaption, kCmdOK.width, kCmdOK.height, kButtonPadding},
        {kCmdCopyCaption, kCmdCopy.width, kCmdCopy.height, kButtonPadding, 2},
        {u"", kTxtLoc.width, kTxtLoc.height, 0, 1, kLineEditPadding},
    };
    for (std::size_t c = 0; c < kLabel5Captions.size(); ++c) {
        fits.push_back({kLabel5Captions[c], kColourLabelShown, kLabel5[c].height});
    }
    for (const LanguageInfo& language : kLanguages) {
        for (auto caption : {language.tabCaption, language.previewCaption}) {
            fits.push_back({caption, kTabMain.width / kTabsPerRow, kTabRowHeight, kTabPadding});
        }
    }
    for (std::u16string_view name : kFontNames) {
        fits.push_back({name, kCboFont.width, kCboFont.height, kComboPadding});
    }

    const QFontMetricsF metrics(font);
    qreal scale = points / kDefaultPointSize;
    auto atLeast = [&](qreal pixels, int twips) {
        scale = std::max(scale, pixels * kTwipsPerPixel / twips);
    };
    for (const Fit& fit : fits) {
        const QString text = toQString(fit.text);
        const qreal width =
            fit.lines == 1 ? metrics.boundingRect(text).width() : twoLineWidth(metrics, text);
        // One pixel more than the text, since the grid's pixels are whole.
        atLeast(std::ceil(width) + fit.padding + 1, fit.width);
        atLeast(std::ceil(metrics.height()) * fit.lines + fit.heightPadding + 1, fit.height);
    }
    return Grid(scale);
}

}  // namespace lorekeep::ui::layout
