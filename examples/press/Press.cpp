// The juice press: how much juice a harvest gives and how many bottles it fills.

#include <cstdio>
#include <cstdlib>

#include "Presses.h"

static void PrintUsage()
{
    std::printf("usage: press KILOGRAMS [BOTTLE]\n"
                "  KILOGRAMS  the harvest\n"
                "  BOTTLE     litres to a bottle; 0.7 unless given\n");
}

int main(int argc, char** argv)
{
    if (argc < 2 || argc > 3) {
        PrintUsage();
        return 2;
    }
    const double harvest = std::atof(argv[1]);
    const double bottle = argc == 3 ? std::atof(argv[2]) : 0.7;
    if (harvest <= 0 || bottle <= 0) {
        std::printf("press: a harvest and a bottle are more than nothing\n");
        return 1;
    }

    TPressHouse house;
    house.Add(new TBasketPress(40));
    house.Add(new TBeltPress(250, 2));

    std::printf("%-12s %8s %8s %8s\n", "press", "hours", "litres", "bottles");
    for (int i = 0; i < house.Count(); ++i) {
        const TPress& press = house.Item(i);
        const double litres = press.Juice(harvest);
        std::printf("%-12s %8.1f %8.1f %8d\n", press.Name(), press.Hours(harvest), litres,
                    static_cast<int>(litres / bottle));
    }
    return 0;
}
