#include "ui/frm_main.hpp"

#include <QAbstractScrollArea>
#include <QHelpEvent>
#include <QKeySequence>
#include <QShortcut>

#include "document/messages.hpp"
#include "ui/caption_button.hpp"
#include "ui/qt_text.hpp"
#include "ui/window_layout.hpp"

namespace lorekeep::ui {

namespace {

using layout::ToPixels;

// Puts a control at its place (pixels in its parent) under its name.
template <typename W>
W* Place(W* widget, const QRect& where, const QString& name, std::u16string_view tip = {}) {
    widget->setGeometry(where);
    widget->setObjectName(name);
    if (!tip.empty()) {
        widget->setToolTip(ToQString(tip));
    }
    return widget;
}

QString Indexed(const char* name, int index) {
    return QStringLiteral("%1(%2)").arg(QLatin1String(name)).arg(index);
}

QStringList TabCaptions() {
    QStringList captions;
    for (const auto& language : kLanguages) {
        captions << ToQString(language.tabCaption);
    }
    for (const auto& language : kLanguages) {
        captions << ToQString(language.previewCaption);
    }
    return captions;
}

}  // namespace

frmMain::frmMain(QWidget* parent) : QWidget(parent) {
    setWindowTitle(ToQString(texts::kWindowCaption));
    setFixedSize(ToPixels(layout::kClientArea).size());
    setWindowFlags(Qt::Window | Qt::CustomizeWindowHint | Qt::WindowTitleHint |
                   Qt::WindowCloseButtonHint);
    CreateControls();
    SilenceInheritedTooltips();
    SetFocusOrder();
    messageBox_ = std::make_unique<QtMessageBox>(this);
    cd1_ = std::make_unique<QtFileDialog>(this);
    controls_ = ControlInterfaces();
    commands_ = std::make_unique<WindowCommands>(controls_);
    ConnectEvents();
    txtLoc->setFocus(Qt::OtherFocusReason);
}

frmMain::~frmMain() {
    // The boxes outlive the window's behaviour by a moment while Qt deletes
    // the children; nothing they say then may reach it.
    for (RichTextBox* box : rtbText) {
        box->disconnect(this);
        box->onCharacterTyped = nullptr;
    }
}

void frmMain::CreateControls() {
    Frame1 = Place(new QGroupBox(ToQString(layout::kFrame1Caption), this),
                   ToPixels(layout::kFrame1), "Frame1");
    Label1 = Place(new QLabel(ToQString(layout::kLabel1Caption), Frame1), ToPixels(layout::kLabel1),
                   "Label1");
    Label2 = Place(new QLabel(ToQString(layout::kLabel2Caption), Frame1), ToPixels(layout::kLabel2),
                   "Label2");
    txtLoc = Place(new QLineEdit(Frame1), ToPixels(layout::kTxtLoc), "txtLoc", layout::kTxtLocTip);
    cmdLoc = Place(new CaptionButton(ToQString(layout::kCmdLocCaption), Frame1),
                   ToPixels(layout::kCmdLoc), "cmdLoc");
    txtName =
        Place(new QLineEdit(Frame1), ToPixels(layout::kTxtName), "txtName", layout::kTxtNameTip);

    Label4 = Place(new QLabel(ToQString(layout::kLabel4Caption), this), ToPixels(layout::kLabel4),
                   "Label4");
    cboFont =
        Place(new QComboBox(this), ToPixels(layout::kCboFont), "cboFont", layout::kCboFontTip);
    cboFont->setEditable(true);
    // Typed names are saved as typed: never added to the list, never completed.
    cboFont->setInsertPolicy(QComboBox::NoInsert);
    cboFont->setCompleter(nullptr);
    for (std::u16string_view font : layout::kFontNames) {
        cboFont->addItem(ToQString(font), 0);
    }
    cboFont->setCurrentIndex(-1);
    cboFont->setEditText(ToQString(layout::kFontBoxInitialText));

    cmdSave = Place(new CaptionButton(ToQString(layout::kCmdSaveCaption), this),
                    ToPixels(layout::kCmdSave), "cmdSave", layout::kCmdSaveTip);
    cmdLoad = Place(new CaptionButton(ToQString(layout::kCmdLoadCaption), this),
                    ToPixels(layout::kCmdLoad), "cmdLoad", layout::kCmdLoadTip);

    tabMain = Place(new TabContainer(TabCaptions(), layout::kTabsPerRow,
                                     layout::kTabRowHeight / layout::kTwipsPerPixel, this),
                    ToPixels(layout::kTabMain), "tabMain", layout::kTabMainTip);
    for (int i = 0; i < kLanguageCount; ++i) {
        CreateLanguagePage(i);
        CreatePreviewPage(i);
    }
}

void frmMain::CreateLanguagePage(int i) {
    QWidget* page = tabMain->page(i);
    auto place = [&](QWidget* widget, layout::TwipRect where, const char* name,
                     std::u16string_view tip = {}) {
        Place(widget, tabMain->toPage(ToPixels(where)),
              Indexed(name, widget->property("index").toInt()), tip);
    };
    auto button = [&](std::u16string_view caption) {
        auto* b = new CaptionButton(ToQString(caption), page);
        b->setProperty("index", i);
        return b;
    };

    cmdLeftJus[i] = button(layout::kCmdLeftJusCaption);
    place(cmdLeftJus[i], layout::kCmdLeftJus, "cmdLeftJus", layout::kCmdLeftJusTip);
    cmdRightJus[i] = button(layout::kCmdRightJusCaption);
    place(cmdRightJus[i], layout::kCmdRightJus, "cmdRightJus", layout::kCmdRightJusTip);
    cmdCent[i] = button(layout::kCmdCentCaption);
    place(cmdCent[i], layout::kCmdCent, "cmdCent", layout::kCmdCentTip);
    cmdColor[i] = button(layout::kCmdColorCaption);
    place(cmdColor[i], layout::kCmdColor, "cmdColor", layout::kCmdColorTips[i]);

    // Labels first: each colour box overlaps the end of its label and is drawn over it.
    for (int c = 0; c < kColourBoxesPerLanguage; ++c) {
        const int k = kColourBoxesPerLanguage * i + c;
        Label5[k] = new QLabel(ToQString(layout::kLabel5Captions[c]), page);
        Label5[k]->setProperty("index", k);
        place(Label5[k], layout::kLabel5[c], "Label5");
    }
    for (int c = 0; c < kColourBoxesPerLanguage; ++c) {
        const int k = kColourBoxesPerLanguage * i + c;
        txtColor[k] = new QLineEdit(ToQString(layout::kColourBoxInitialText), page);
        txtColor[k]->setProperty("index", k);
        txtColor[k]->setEnabled(false);
        place(txtColor[k], layout::kTxtColor[c], "txtColor");
    }
    cmdOK[i] = button(layout::kCmdOKCaption);
    cmdOK[i]->setEnabled(false);
    place(cmdOK[i], layout::kCmdOK, "cmdOK", layout::kCmdOKTip);
    cmdCopy[i] = button(layout::kCmdCopyCaption);
    place(cmdCopy[i], layout::kCmdCopy, "cmdCopy", layout::kCmdCopyTips[i]);

    Label3[i] = new QLabel(ToQString(layout::kLabel3Caption), page);
    Label3[i]->setProperty("index", i);
    place(Label3[i], layout::kLabel3, "Label3");
    txtTitle[i] = new QLineEdit(page);
    txtTitle[i]->setProperty("index", i);
    place(txtTitle[i], layout::kTxtTitle, "txtTitle", layout::kTxtTitleTip);

    rtbText[i] = new RichTextBox(page);
    rtbText[i]->setProperty("index", i);
    place(rtbText[i], layout::kLanguageEditor, "rtbText", layout::kEditorTip);
}

void frmMain::CreatePreviewPage(int i) {
    const int k = kPreviewIndexOffset + i;
    rtbText[k] =
        Place(new RichTextBox(tabMain->page(k)), tabMain->toPage(ToPixels(layout::kPreviewPane)),
              Indexed("rtbText", k), layout::kPreviewTips[i]);
    rtbText[k]->setProperty("index", k);
}

void frmMain::SilenceInheritedTooltips() {
    // The named controls only: the tab container's own parts (its strip and
    // the page area) rightly show the container's tooltip.
    for (QWidget* control : findChildren<QWidget*>()) {
        if (control->objectName().isEmpty() || control == tabMain) {
            continue;
        }
        control->installEventFilter(this);
        if (auto* scrollArea = qobject_cast<QAbstractScrollArea*>(control)) {
            scrollArea->viewport()->installEventFilter(this);
        }
    }
}

bool frmMain::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::ToolTip) {
        auto* widget = qobject_cast<QWidget*>(watched);
        auto* area = widget != nullptr ? qobject_cast<QAbstractScrollArea*>(widget->parentWidget())
                                       : nullptr;
        if (area != nullptr && area->viewport() == widget) {
            widget = area;  // a text box's viewport speaks for its box
        }
        if (widget != nullptr && widget->toolTip().isEmpty()) {
            // Accepted, so that it goes no further up to the container.
            event->accept();
            return true;
        }
    }
    return QWidget::eventFilter(watched, event);
}

void frmMain::SetFocusOrder() {
    std::vector<QWidget*> order{txtLoc, tabMain->strip()};
    order.insert(order.end(), rtbText.begin(), rtbText.end());
    order.push_back(txtName);
    order.insert(order.end(),
                 {cmdLeftJus[0], txtTitle[0], cmdCent[0], cmdRightJus[0], cmdColor[0]});
    order.insert(order.end(), {txtTitle[1], txtTitle[2], txtTitle[3]});
    for (int i = 1; i < kLanguageCount; ++i) {
        order.insert(order.end(), {cmdColor[i], cmdRightJus[i], cmdCent[i], cmdLeftJus[i]});
    }
    order.insert(order.end(), {cboFont, cmdLoad, cmdSave});
    order.insert(order.end(), txtColor.begin(), txtColor.end());
    order.insert(order.end(), {cmdOK[3], cmdOK[2], cmdOK[0], cmdOK[1]});
    order.insert(order.end(), cmdCopy.begin(), cmdCopy.end());
    order.push_back(cmdLoc);
    for (std::size_t k = 1; k < order.size(); ++k) {
        setTabOrder(order[k - 1], order[k]);
    }
}

WindowControls frmMain::ControlInterfaces() {
    WindowControls c;
    auto textBox = [&](QLineEdit* edit) {
        textBoxes_.push_back(std::make_unique<LineEditControl>(edit));
        return textBoxes_.back().get();
    };
    auto button = [&](QPushButton* b) {
        buttons_.push_back(std::make_unique<PushButtonControl>(b));
        return buttons_.back().get();
    };
    for (int k = 0; k < kRichTextBoxCount; ++k) {
        c.rtbText[k] = rtbText[k];
    }
    for (int i = 0; i < kLanguageCount; ++i) {
        c.previewPane[i] = rtbText[kPreviewIndexOffset + i];
        c.txtTitle[i] = textBox(txtTitle[i]);
        c.cmdColor[i] = button(cmdColor[i]);
        c.cmdOK[i] = button(cmdOK[i]);
    }
    for (std::size_t k = 0; k < txtColor.size(); ++k) {
        c.txtColor[k] = textBox(txtColor[k]);
    }
    c.txtLoc = textBox(txtLoc);
    c.txtName = textBox(txtName);
    fontBox_ = std::make_unique<ComboBoxControl>(cboFont);
    c.cboFont = fontBox_.get();
    c.messages = messageBox_.get();
    c.cd1 = cd1_.get();
    c.clock = &clock_;
    return c;
}

void frmMain::ConnectEvents() {
    for (int k = 0; k < kRichTextBoxCount; ++k) {
        connect(rtbText[k], &QTextEdit::textChanged, this,
                [this, k] { commands_->rtbText_Change(k); });
        rtbText[k]->onCharacterTyped = [this, k](int& code) {
            commands_->rtbText_KeyPress(k, code);
        };
    }
    for (int i = 0; i < kLanguageCount; ++i) {
        connect(cmdLeftJus[i], &QPushButton::clicked, this,
                [this, i] { commands_->cmdLeftJus_Click(i); });
        connect(cmdCent[i], &QPushButton::clicked, this,
                [this, i] { commands_->cmdCent_Click(i); });
        connect(cmdRightJus[i], &QPushButton::clicked, this,
                [this, i] { commands_->cmdRightJus_Click(i); });
        connect(cmdColor[i], &QPushButton::clicked, this,
                [this, i] { commands_->cmdColor_Click(i); });
        connect(cmdOK[i], &QPushButton::clicked, this, [this, i] { commands_->cmdOK_Click(i); });
        connect(cmdCopy[i], &QPushButton::clicked, this,
                [this, i] { commands_->cmdCopy_Click(i); });
    }
    connect(cmdLoc, &QPushButton::clicked, this, [this] { commands_->cmdLoc_Click(); });
    connect(cmdSave, &QPushButton::clicked, this, [this] { commands_->cmdSave_Click(); });
    connect(cmdLoad, &QPushButton::clicked, this, [this] { commands_->cmdLoad_Click(); });
    // Ctrl+Tab and Ctrl+Shift+Tab step through the pages, as in any tabbed window.
    auto* next = new QShortcut(QKeySequence(Qt::CTRL | Qt::Key_Tab), this);
    connect(next, &QShortcut::activated, tabMain, [this] { tabMain->cycle(1); });
    auto* previous = new QShortcut(QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_Backtab), this);
    connect(previous, &QShortcut::activated, tabMain, [this] { tabMain->cycle(-1); });
    auto* previousAlt = new QShortcut(QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_Tab), this);
    connect(previousAlt, &QShortcut::activated, tabMain, [this] { tabMain->cycle(-1); });
}

void frmMain::Save(const QString& SchemaName, const QString& filename) {
    commands_->Save(FromQString(SchemaName), FromQString(filename));
}

void frmMain::Load(const QString& SchemaName, const QString& filename) {
    commands_->Load(FromQString(SchemaName), FromQString(filename));
}

void frmMain::setDialogs(MessageBox* messages, FileDialog* dialog) {
    controls_.messages = messages;
    controls_.cd1 = dialog;
    commands_ = std::make_unique<WindowCommands>(controls_);
}

}  // namespace lorekeep::ui
