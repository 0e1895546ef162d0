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

    int currentIndex() const { return m_current; }
    void setCurrentIndex(int index);
    int count() const { return static_cast<int>(m_captions.size()); }
    QString caption(int index) const { return m_captions.value(index); }
    QRect tabRect(int index) const;
    int tabAt(const QPoint& point) const;
    // The font a tab's caption is drawn in: the strip's own unless it must shrink.
    QFont captionFont(int index) const;

  signals:
    void currentChanged(int index);

  protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

  private:
    QStringList m_captions;
    int m_tabsPerRow;
    int m_rowHeight;
    int m_current = 0;
};

// The tab container: the strip above a stack of pages.
class TabContainer : public QWidget {
    Q_OBJECT

  public:
    TabContainer(QStringList captions, int tabsPerRow, int rowHeight, QWidget* parent = nullptr);

    TwoRowTabStrip* strip() const { return m_strip; }
    int currentIndex() const { return m_strip->currentIndex(); }
    void setCurrentIndex(int index) { m_strip->setCurrentIndex(index); }

    // Adds the next page. Its children are placed in the container's own
    // coordinates less pageOffset(), the height of the tab band.
    void addPage(QWidget* page) { m_stack->addWidget(page); }
    QWidget* page(int index) const { return m_stack->widget(index); }
    QPoint pageOffset() const { return {0, m_bandHeight}; }

    // Moves to the next or previous page, wrapping around.
    void cycle(int step);

  protected:
    void resizeEvent(QResizeEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

  private:
    TwoRowTabStrip* m_strip;
    QStackedWidget* m_stack;
    int m_bandHeight;
};

}  // namespace lorekeep::ui
