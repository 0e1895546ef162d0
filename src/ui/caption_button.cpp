#include "ui/caption_button.hpp"

#include <QFontMetrics>
#include <QStyleOptionButton>
#include <QStylePainter>

namespace lorekeep::ui {

namespace {

constexpr qreal kSmallestPointSize = 6.0;
constexpr qreal kStep = 0.5;
constexpr int kInset = 2;

bool fits(const QFont& font, const QString& text, const QSize& box, bool wrap) {
    const QFontMetrics metrics(font);
    const int flags = Qt::AlignCenter | (wrap ? Qt::TextWordWrap : 0);
    const QRect needed = metrics.boundingRect(QRect(QPoint(0, 0), box), flags, text);
    return needed.width() <= box.width() && needed.height() <= box.height();
}

}  // namespace

QFont fittedFont(const QFont& font, const QString& text, const QSize& box, bool wrap) {
    QFont fitted = font;
    qreal size = font.pointSizeF() > 0 ? font.pointSizeF() : 9.0;
    while (size > kSmallestPointSize && !fits(fitted, text, box, wrap)) {
        size -= kStep;
        fitted.setPointSizeF(size);
    }
    return fitted;
}

CaptionButton::CaptionButton(const QString& caption, QWidget* parent)
    : QPushButton(caption, parent) {}

QRect CaptionButton::captionArea() const {
    return rect().adjusted(kInset, 0, -kInset, 0);
}

bool CaptionButton::wrapsCaption() const {
    // Two lines fit only in a button at least twice as tall as one line.
    return captionArea().height() >= 2 * QFontMetrics(font()).height();
}

QFont CaptionButton::captionFont() const {
    return fittedFont(font(), text(), captionArea().size(), wrapsCaption());
}

void CaptionButton::paintEvent(QPaintEvent*) {
    QStylePainter painter(this);
    QStyleOptionButton option;
    initStyleOption(&option);
    painter.drawControl(QStyle::CE_PushButtonBevel, option);

    painter.setFont(captionFont());
    painter.drawItemText(captionArea(), Qt::AlignCenter | (wrapsCaption() ? Qt::TextWordWrap : 0),
                         palette(), isEnabled(), text(), QPalette::ButtonText);
    if (hasFocus()) {
        QStyleOptionFocusRect focus;
        focus.initFrom(this);
        focus.rect = style()->subElementRect(QStyle::SE_PushButtonFocusRect, &option, this);
        painter.drawPrimitive(QStyle::PE_FrameFocusRect, focus);
    }
}

}  // namespace lorekeep::ui
