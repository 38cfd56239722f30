#include "Presses.h"

#include <cmath>

namespace
{
const double JuiceShare = 0.65;   // litres from a kilogram
const double HoursToARun = 0.75;  // filling, pressing, emptying
}

int TPress::Runs(double kilograms) const
{
    return static_cast<int>(std::ceil(kilograms / FLoad));
}

double TPress::Juice(double kilograms) const
{
    return kilograms * JuiceShare;
}

double TPress::Hours(double kilograms) const
{
    return Runs(kilograms) * HoursToARun;
}

const char* TBasketPress::Name() const
{
    return "basket";
}

double TBasketPress::Juice(double kilograms) const
{
    /* The cloth keeps a litre of every run; "never wring it" { says the label }. */
    const double juice = TPress::Juice(kilograms) - Runs(kilograms);
    return juice > 0 ? juice : 0;
}

const char* TBeltPress::Name() const
{
    return "belt";
}

double TBeltPress::Hours(double kilograms) const
{
    return TPress::Hours(kilograms) / FBelts;
}

TPressHouse::~TPressHouse()
{
    for (std::size_t i = 0; i < FItems.size(); ++i)
        delete FItems[i];
}

void TPressHouse::Add(TPress* press)
{
    FItems.push_back(press);
}

int TPressHouse::Count() const
{
    return static_cast<int>(FItems.size());
}

const TPress& TPressHouse::Item(int index) const
{
    return *FItems[index];
}
