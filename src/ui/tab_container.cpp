#include "ui/tab_container.hpp"

#include "ui/caption_button.hpp"

#include <QAccessible>
#include <QAccessibleWidget>
#include <QHash>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPointer>
#include <QStyleOptionTab>
#include <QStyleOptionTabWidgetFrame>
#include <QStylePainter>

namespace lorekeep::ui {

namespace {

// One tab of the strip as a screen reader sees it: a page tab with its
// caption, selected when its page is up, pressed to bring its page up.
class AccessibleTab final : public QAccessibleInterface, public QAccessibleActionInterface {
  public:
    AccessibleTab(TwoRowTabStrip* strip, int index) : m_strip(strip), m_index(index) {}

    bool isValid() const override { return !m_strip.isNull(); }
    QObject* object() const override { return nullptr; }
    QWindow* window() const override {
        return m_strip ? m_strip->window()->windowHandle() : nullptr;
    }
    QAccessibleInterface* parent() const override {
        return QAccessible::queryAccessibleInterface(m_strip.data());
    }
    QAccessibleInterface* child(int) const override { return nullptr; }
    QAccessibleInterface* childAt(int, int) const override { return nullptr; }
    int childCount() const override { return 0; }
    int indexOfChild(const QAccessibleInterface*) const override { return -1; }
    QString text(QAccessible::Text t) const override {
        return t == QAccessible::Name && m_strip ? m_strip->caption(m_index) : QString();
    }
    void setText(QAccessible::Text, const QString&) override {}
    QRect rect() const override {
        if (!m_strip) {
            return {};
        }
        const QRect tab = m_strip->tabRect(m_index);
        return {m_strip->mapToGlobal(tab.topLeft()), tab.size()};
    }
    QAccessible::Role role() const override { return QAccessible::PageTab; }
    QAccessible::State state() const override {
        QAccessible::State s;
        if (!m_strip) {
            s.invalid = true;
            return s;
        }
        const bool current = m_strip->currentIndex() == m_index;
        s.focusable = true;
        s.selectable = true;
        s.selected = current;
        s.focused = current && m_strip->hasFocus();
        s.invisible = !m_strip->isVisible();
        return s;
    }
    void* interface_cast(QAccessible::InterfaceType type) override {
        return type == QAccessible::ActionInterface ? static_cast<QAccessibleActionInterface*>(this)
                                                    : nullptr;
    }
    // A tab controls its page: the page is what it controls. A relation
    // names what the other object is to this one, as Qt's own widgets report
    // the receivers of their signals as Controlled (AT-SPI: CONTROLLER_FOR).
    QList<QPair<QAccessibleInterface*, QAccessible::Relation>> relations(
        QAccessible::Relation match) const override {
        auto* container = m_strip ? qobject_cast<TabContainer*>(m_strip->parentWidget()) : nullptr;
        QWidget* page = container != nullptr ? container->page(m_index) : nullptr;
        if (page == nullptr || !(match & QAccessible::Controlled)) {
            return {};
        }
        return {{QAccessible::queryAccessibleInterface(page), QAccessible::Controlled}};
    }

    QStringList actionNames() const override { return {pressAction()}; }
    void doAction(const QString& name) override {
        if (m_strip && name == pressAction()) {
            m_strip->setCurrentIndex(m_index);
        }
    }
    QStringList keyBindingsForAction(const QString&) const override { return {}; }

  private:
    QPointer<TwoRowTabStrip> m_strip;
    int m_index;
};

// The strip as a page tab list whose children are its tabs.
class AccessibleTabStrip final : public QAccessibleWidget {
  public:
    explicit AccessibleTabStrip(TwoRowTabStrip* strip)
        : QAccessibleWidget(strip, QAccessible::PageTabList) {}
    ~AccessibleTabStrip() override {
        for (QAccessible::Id id : std::as_const(m_tabs)) {
            QAccessible::deleteAccessibleInterface(id);
        }
    }

    int childCount() const override { return strip()->count(); }
    QAccessibleInterface* child(int index) const override {
        if (index < 0 || index >= childCount()) {
            return nullptr;
        }
        if (!m_tabs.contains(index)) {
            m_tabs.insert(
                index, QAccessible::registerAccessibleInterface(new AccessibleTab(strip(), index)));
        }
        return QAccessible::accessibleInterface(m_tabs.value(index));
    }
    int indexOfChild(const QAccessibleInterface* tab) const override {
        for (auto it = m_tabs.cbegin(); it != m_tabs.cend(); ++it) {
            if (QAccessible::accessibleInterface(it.value()) == tab) {
                return it.key();
            }
        }
        return -1;
    }
    QAccessibleInterface* childAt(int x, int y) const override {
        return child(strip()->tabAt(strip()->mapFromGlobal(QPoint(x, y))));
    }
    QAccessibleInterface* focusChild() const override {
        return strip()->hasFocus() ? child(strip()->currentIndex()) : nullptr;
    }

  private:
    TwoRowTabStrip* strip() const { return static_cast<TwoRowTabStrip*>(widget()); }

    mutable QHash<int, QAccessible::Id> m_tabs;
};

constexpr int kCaptionInset = 4;

QAccessibleInterface* accessibleTabStrip(const QString&, QObject* object) {
    auto* strip = qobject_cast<TwoRowTabStrip*>(object);
    return strip != nullptr ? new AccessibleTabStrip(strip) : nullptr;
}

}  // namespace

TwoRowTabStrip::TwoRowTabStrip(QStringList captions, int tabsPerRow, int rowHeight, QWidget* parent)
    : QWidget(parent),
      m_captions(std::move(captions)),
      m_tabsPerRow(tabsPerRow),
      m_rowHeight(rowHeight) {
    setFocusPolicy(Qt::StrongFocus);
    setAttribute(Qt::WA_Hover);
    static const bool factoryInstalled = [] {
        QAccessible::installFactory(accessibleTabStrip);
        return true;
    }();
    Q_UNUSED(factoryInstalled);
}

void TwoRowTabStrip::setCurrentIndex(int index) {
    if (index < 0 || index >= count() || index == m_current) {
        return;
    }
    const int previous = m_current;
    m_current = index;
    update();
    if (QAccessible::isActive()) {
        // Both tabs change their selected state; the new one takes the focus.
        QAccessible::State selected;
        selected.selected = true;
        for (int tab : {previous, index}) {
            QAccessibleStateChangeEvent change(this, selected);
            change.setChild(tab);
            QAccessible::updateAccessibility(&change);
        }
        if (hasFocus()) {
            QAccessibleEvent focus(this, QAccessible::Focus);
            focus.setChild(index);
            QAccessible::updateAccessibility(&focus);
        }
    }
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

QFont TwoRowTabStrip::captionFont(int index) const {
    const QRect label = tabRect(index).adjusted(kCaptionInset, 0, -kCaptionInset, 0);
    return fittedFont(font(), caption(index), label.size(), false);
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
        painter.setFont(captionFont(k));
        painter.drawItemText(option.rect.adjusted(kCaptionInset, 0, -kCaptionInset, 0),
                             Qt::AlignCenter, palette(), isEnabled(), option.text,
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
