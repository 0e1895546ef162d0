#pragma once

#include <QStackedWidget>
#include <QStringList>
#include <QWidget>

namespace lorekeep::ui {

// A strip of tabs in two rows of equal width, all visible at once. Clicking a
// tab or moving with the arrow keys while the strip has the focus selects it.
class TwoRowTabStrip : public QWidget {
    Q_OBJECT

  public:
    TwoRowTabStrip(QStringList captions, int tabsPerRow, int rowHeight, QWidget* parent = nullptr);

    int currentIndex() const { return current_; }
    void setCurrentIndex(int index);
    int count() const { return static_cast<int>(captions_.size()); }
    QString tabText(int index) const { return captions_.value(index); }
    QRect tabRect(int index) const;
    int tabAt(const QPoint& point) const;

  signals:
    void currentChanged(int index);

  protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

  private:
    QStringList captions_;
    int tabsPerRow_;
    int rowHeight_;
    int current_ = 0;
};

// The tab container: the strip above a stack of pages. Children of a page
// are placed in the container's own coordinates, strip included, so that
// positions measured from the container's corner stay as they are.
class TabContainer : public QWidget {
    Q_OBJECT

  public:
    TabContainer(QStringList captions, int tabsPerRow, int rowHeight, QWidget* parent = nullptr);

    TwoRowTabStrip* strip() const { return strip_; }
    QWidget* page(int index) const { return stack_->widget(index); }
    int currentIndex() const { return strip_->currentIndex(); }
    void setCurrentIndex(int index) { strip_->setCurrentIndex(index); }

    // Moves to the next or previous page, wrapping around.
    void cycle(int step);

    // Converts a rectangle in the container's coordinates to a page's.
    QRect toPage(const QRect& containerRect) const;

  protected:
    void resizeEvent(QResizeEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

  private:
    TwoRowTabStrip* strip_;
    QStackedWidget* stack_;
    int bandHeight_;
};

}  // namespace lorekeep::ui
