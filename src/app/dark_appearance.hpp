#pragma once

class QApplication;

namespace perchftp::app {

// The Fusion style with a dark palette on the whole application, whatever the desktop's theme.
void applyDarkAppearance(QApplication& application);

} // namespace perchftp::app
