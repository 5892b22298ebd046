// A command that is asked whether it can be given now.
#pragma once

// Whoever shows the command derives from it; the window that takes the command answers by Enable. UI thread only.
class CCmdUI {
public:
    explicit CCmdUI(unsigned id) : m_nID(id) {}
    virtual void Enable(bool enable) = 0;

    unsigned m_nID;

protected:
    ~CCmdUI() = default;
};
