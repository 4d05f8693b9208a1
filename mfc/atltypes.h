// A rectangle as an object.
#pragma once

class CRect : public RECT
{
public:
    CRect() : RECT{ 0, 0, 0, 0 } {}
    CRect(int l, int t, int r, int b) : RECT{ l, t, r, b } {}
    CRect(const RECT& rcSrc) : RECT(rcSrc) {}

    operator LPRECT() { return this; }
    operator LPCRECT() const { return this; }
};
