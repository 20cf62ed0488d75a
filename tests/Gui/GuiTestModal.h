#pragma once
// A test that expects modal windows answers them here: the handler gets each one that opens and
// returns true when it dealt with it (filled it in, pressed a button). Any modal window the
// handler does not take is a failure and is closed.
#include <functional>

class QWidget;

using ModalHandler = std::function<bool(QWidget* modal)>;

// Installs `handler` for the life of the object.
class CExpectModal
{
public:
    explicit CExpectModal(ModalHandler handler);
    ~CExpectModal();
    CExpectModal(const CExpectModal&) = delete;
    CExpectModal& operator=(const CExpectModal&) = delete;
};
