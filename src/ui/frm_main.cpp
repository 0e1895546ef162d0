#include "ui/frm_main.hpp"

#include "document/messages.hpp"
#include "ui/qt_text.hpp"

namespace lorekeep::ui {

namespace {

// The client area in twips, shown at 15 twips per device-independent pixel.
constexpr int kTwipsPerPixel = 15;
constexpr int kClientWidthTwips = 6315;
constexpr int kClientHeightTwips = 7065;

}  // namespace

frmMain::frmMain(QWidget* parent) : QWidget(parent) {
    setWindowTitle(ToQString(texts::kWindowCaption));
    setFixedSize(kClientWidthTwips / kTwipsPerPixel, kClientHeightTwips / kTwipsPerPixel);
    setWindowFlags(Qt::Window | Qt::CustomizeWindowHint | Qt::WindowTitleHint |
                   Qt::WindowCloseButtonHint);
}

}  // namespace lorekeep::ui
