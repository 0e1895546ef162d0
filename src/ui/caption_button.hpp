#pragma once

#include <QFont>
#include <QPushButton>

namespace lorekeep::ui {

// The largest version of `font`, no larger than it, in which `text` fits the
// box (wrapped at spaces when `wrap`); never below a legible minimum.
QFont fittedFont(const QFont& font, const QString& text, const QSize& box, bool wrap);

// A push button whose caption always fits: wrapped onto several lines when the
// button is tall enough, and drawn in a smaller size of the default font when
// the fixed size of the button leaves no other way. Everything else is the
// style's own push button.
class CaptionButton : public QPushButton {
    Q_OBJECT

  public:
    explicit CaptionButton(const QString& caption, QWidget* parent = nullptr);

    // The font the caption is drawn in: the button's own unless it must shrink.
    QFont captionFont() const;

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    QRect captionArea() const;
    bool wrapsCaption() const;
};

}  // namespace lorekeep::ui
