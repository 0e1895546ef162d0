#include "ui/tab_container.hpp"

#include "ui/caption_button.hpp"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QStyleOptionTab>
#include <QStyleOptionTabWidgetFrame>
#include <QStylePainter>

namespace lorekeep::ui {

TwoRowTabStrip::TwoRowTabStrip(QStringList captions, int tabsPerRow, int rowHeight, QWidget* parent)
    : QWidget(parent),
      m_captions(std::move(captions)),
      m_tabsPerRow(tabsPerRow),
      m_rowHeight(rowHeight) {
    setFocusPolicy(Qt::StrongFocus);
    setAttribute(Qt::WA_Hover);
}

void TwoRowTabStrip::setCurrentIndex(int index) {
    if (index < 0 || index >= count() || index == m_current) {
        return;
    }
    m_current = index;
    update();
    emit currentChanged(index);
}

QRect TwoRowTabStrip::tabRect(int index) const {
    // Each tab is a quarter of the width; the last in a row takes what the
    // division leaves over.
    const int column = index % m_tabsPerRow;
    const int row = index / m_tabsPerRow;
    const int left = width() * column / m_tabsPerRow;
    const int right = width() * (column + 1) / m_tabsPerRow;
    return {left, row * m_rowHeight, right - left, m_rowHeight};
}

int TwoRowTabStrip::tabAt(const QPoint& point) const {
    for (int k = 0; k < count(); ++k) {
        if (tabRect(k).contains(point)) {
            return k;
        }
    }
    return -1;
}

void TwoRowTabStrip::paintEvent(QPaintEvent*) {
    QStylePainter painter(this);
    const int currentRow = m_current / m_tabsPerRow;
    for (int k = 0; k < count(); ++k) {
        QStyleOptionTab option;
        option.initFrom(this);
        option.shape = QTabBar::RoundedNorth;
        option.rect = tabRect(k);
        option.text = m_captions[k];
        const int column = k % m_tabsPerRow;
        option.position = column == 0                  ? QStyleOptionTab::Beginning
                          : column == m_tabsPerRow - 1 ? QStyleOptionTab::End
                                                       : QStyleOptionTab::Middle;
        option.state &=
            ~(QStyle::State_Selected | QStyle::State_HasFocus | QStyle::State_MouseOver);
        if (k == m_current) {
            option.state |= QStyle::State_Selected;
            if (hasFocus()) {
                option.state |= QStyle::State_HasFocus;
            }
        }
        if (underMouse() && tabRect(k).contains(mapFromGlobal(QCursor::pos()))) {
            option.state |= QStyle::State_MouseOver;
        }
        // The row of the selected tab is drawn against the pages, as in any
        // tab control with several rows.
        if (k / m_tabsPerRow != currentRow) {
            option.state &= ~QStyle::State_Selected;
        }
        painter.drawControl(QStyle::CE_TabBarTabShape, option);
        const QRect label = option.rect.adjusted(4, 0, -4, 0);
        painter.setFont(fittedFont(font(), option.text, label.size(), false));
        painter.drawItemText(label, Qt::AlignCenter, palette(), isEnabled(), option.text,
                             QPalette::WindowText);
        if (k == m_current && hasFocus()) {
            QStyleOptionFocusRect focus;
            focus.initFrom(this);
            focus.rect = tabRect(k).adjusted(3, 3, -3, -3);
            painter.drawPrimitive(QStyle::PE_FrameFocusRect, focus);
        }
    }
}

void TwoRowTabStrip::mousePressEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton) {
        setCurrentIndex(tabAt(event->position().toPoint()));
    }
    QWidget::mousePressEvent(event);
}

void TwoRowTabStrip::keyPressEvent(QKeyEvent* event) {
    switch (event->key()) {
        case Qt::Key_Left:
            setCurrentIndex((m_current + count() - 1) % count());
            break;
        case Qt::Key_Right:
            setCurrentIndex((m_current + 1) % count());
            break;
        case Qt::Key_Up:
        case Qt::Key_Down:
            setCurrentIndex((m_current + m_tabsPerRow) % count());
            break;
        default:
            QWidget::keyPressEvent(event);
            return;
    }
    event->accept();
}

TabContainer::TabContainer(QStringList captions, int tabsPerRow, int rowHeight, QWidget* parent)
    : QWidget(parent) {
    const int rows = (static_cast<int>(captions.size()) + tabsPerRow - 1) / tabsPerRow;
    m_bandHeight = rows * rowHeight;
    m_strip = new TwoRowTabStrip(std::move(captions), tabsPerRow, rowHeight, this);
    m_strip->move(0, 0);
    // No frame of its own: a frame would shift the pages' children off the
    // positions they are given. The container draws the panel instead.
    m_stack = new QStackedWidget(this);
    m_stack->setFrameShape(QFrame::NoFrame);
    m_stack->move(0, m_bandHeight);
    connect(m_strip, &TwoRowTabStrip::currentChanged, m_stack, &QStackedWidget::setCurrentIndex);
}

void TabContainer::resizeEvent(QResizeEvent* event) {
    m_strip->setGeometry(0, 0, width(), m_bandHeight);
    m_stack->setGeometry(0, m_bandHeight, width(), height() - m_bandHeight);
    QWidget::resizeEvent(event);
}

void TabContainer::paintEvent(QPaintEvent*) {
    QStylePainter painter(this);
    QStyleOptionTabWidgetFrame frame;
    frame.initFrom(this);
    frame.rect = QRect(0, m_bandHeight, width(), height() - m_bandHeight);
    frame.shape = QTabBar::RoundedNorth;
    painter.drawPrimitive(QStyle::PE_FrameTabWidget, frame);
}

void TabContainer::cycle(int step) {
    const int pages = m_strip->count();
    setCurrentIndex(((currentIndex() + step) % pages + pages) % pages);
}

}  // namespace lorekeep::ui
