#pragma once

#include <QWidget>

namespace lorekeep::ui {

// The editor's one window.
class frmMain : public QWidget {
    Q_OBJECT

  public:
    explicit frmMain(QWidget* parent = nullptr);
};

}  // namespace lorekeep::ui
