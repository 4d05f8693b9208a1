// A rectangle as an object.
#pragma once

class CRect : public RECT
{
public:
    CRect() : RECT{ 0, 0, 0, 0 } {}
};
