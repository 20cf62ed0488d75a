// The GUI tests' main: one QApplication for the whole run (on the offscreen platform unless a
// display is given), made before any test and destroyed before Qt's own statics are.
#include <QApplication>
#include <QTimer>
#include <QWidget>

#include "GuiTestModal.h"

#include <gtest/gtest.h>

#include <cstdlib>

namespace
{
ModalHandler g_ModalHandler;
} // namespace

CExpectModal::CExpectModal(ModalHandler handler)
{
    g_ModalHandler = std::move(handler);
}

CExpectModal::~CExpectModal()
{
    g_ModalHandler = nullptr;
}

int main(int argc, char** argv)
{
    if (!std::getenv("DISPLAY") && !std::getenv("WAYLAND_DISPLAY"))
        setenv("QT_QPA_PLATFORM", "offscreen", 0);
    ::testing::InitGoogleTest(&argc, argv);
    QApplication app(argc, argv);

    // A modal window that the running test does not expect is a failure, and is closed so that
    // the modal loop it runs ends instead of waiting for a user.
    QTimer modalWatch;
    QObject::connect(&modalWatch, &QTimer::timeout,
                     []
                     {
                         if (QWidget* modal = QApplication::activeModalWidget())
                         {
                             if (g_ModalHandler && g_ModalHandler(modal))
                                 return;
                             ADD_FAILURE() << "unexpected dialog: " << modal->windowTitle().toStdString();
                             modal->close();
                         }
                     });
    modalWatch.start(200);
    return RUN_ALL_TESTS();
}
