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
      captions_(std::move(captions)),
      tabsPerRow_(tabsPerRow),
      rowHeight_(rowHeight) {
    setFocusPolicy(Qt::StrongFocus);
    setAttribute(Qt::WA_Hover);
}

void TwoRowTabStrip::setCurrentIndex(int index) {
    if (index < 0 || index >= count() || index == current_) {
        return;
    }
    current_ = index;
    update();
    emit currentChanged(index);
}

QRect TwoRowTabStrip::tabRect(int index) const {
    // Each tab is a quarter of the width; the last in a row takes what the
    // division leaves over.
    const int column = index % tabsPerRow_;
    const int row = index / tabsPerRow_;
    const int left = width() * column / tabsPerRow_;
    const int right = width() * (column + 1) / tabsPerRow_;
    return {left, row * rowHeight_, right - left, rowHeight_};
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
    const int currentRow = current_ / tabsPerRow_;
    for (int k = 0; k < count(); ++k) {
        QStyleOptionTab option;
        option.initFrom(this);
        option.shape = QTabBar::RoundedNorth;
        option.rect = tabRect(k);
        option.text = captions_[k];
        const int column = k % tabsPerRow_;
        option.position = column == 0                 ? QStyleOptionTab::Beginning
                          : column == tabsPerRow_ - 1 ? QStyleOptionTab::End
                                                      : QStyleOptionTab::Middle;
        option.state &=
            ~(QStyle::State_Selected | QStyle::State_HasFocus | QStyle::State_MouseOver);
        if (k == current_) {
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
        if (k / tabsPerRow_ != currentRow) {
            option.state &= ~QStyle::State_Selected;
        }
        painter.drawControl(QStyle::CE_TabBarTabShape, option);
        const QRect label = option.rect.adjusted(4, 0, -4, 0);
        painter.setFont(FittedFont(font(), option.text, label.size(), false));
        painter.drawItemText(label, Qt::AlignCenter, palette(), isEnabled(), option.text,
                             QPalette::WindowText);
        if (k == current_ && hasFocus()) {
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
            setCurrentIndex((current_ + count() - 1) % count());
            break;
        case Qt::Key_Right:
            setCurrentIndex((current_ + 1) % count());
            break;
        case Qt::Key_Up:
        case Qt::Key_Down:
            setCurrentIndex((current_ + tabsPerRow_) % count());
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
    const int pages = static_cast<int>(captions.size());
    bandHeight_ = rows * rowHeight;
    strip_ = new TwoRowTabStrip(std::move(captions), tabsPerRow, rowHeight, this);
    strip_->move(0, 0);
    // No frame of its own: a frame would shift the pages' children off the
    // positions they are given. The container draws the panel instead.
    stack_ = new QStackedWidget(this);
    stack_->setFrameShape(QFrame::NoFrame);
    for (int k = 0; k < pages; ++k) {
        stack_->addWidget(new QWidget(stack_));
    }
    stack_->move(0, bandHeight_);
    connect(strip_, &TwoRowTabStrip::currentChanged, stack_, &QStackedWidget::setCurrentIndex);
}

void TabContainer::resizeEvent(QResizeEvent* event) {
    strip_->setGeometry(0, 0, width(), bandHeight_);
    stack_->setGeometry(0, bandHeight_, width(), height() - bandHeight_);
    QWidget::resizeEvent(event);
}

void TabContainer::paintEvent(QPaintEvent*) {
    QStylePainter painter(this);
    QStyleOptionTabWidgetFrame frame;
    frame.initFrom(this);
    frame.rect = QRect(0, bandHeight_, width(), height() - bandHeight_);
    frame.shape = QTabBar::RoundedNorth;
    painter.drawPrimitive(QStyle::PE_FrameTabWidget, frame);
}

void TabContainer::cycle(int step) {
    const int pages = strip_->count();
    setCurrentIndex(((currentIndex() + step) % pages + pages) % pages);
}

QRect TabContainer::toPage(const QRect& containerRect) const {
    return containerRect.translated(0, -bandHeight_);
}

}  // namespace lorekeep::ui
