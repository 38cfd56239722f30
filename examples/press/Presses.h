#ifndef PressesH
#define PressesH

#include <vector>

// A press turns kilograms of fruit into litres of juice.
class TPress
{
public:
    explicit TPress(double load) : FLoad(load) {}
    virtual ~TPress() {}
    virtual const char* Name() const = 0;
    virtual double Juice(double kilograms) const;
    virtual double Hours(double kilograms) const;
    double Load() const { return FLoad; }

protected:
    int Runs(double kilograms) const;

private:
    TPress(const TPress&);
    TPress& operator=(const TPress&);

    double FLoad; // kilograms to a run
};

class TBasketPress : public TPress
{
public:
    explicit TBasketPress(double load) : TPress(load) {}
    const char* Name() const;
    double Juice(double kilograms) const;
};

class TBeltPress : public TPress
{
public:
    TBeltPress(double load, int belts) : TPress(load), FBelts(belts) {}
    const char* Name() const;
    double Hours(double kilograms) const;

private:
    int FBelts;
};

// The presses of a house; it owns them.
class TPressHouse
{
public:
    TPressHouse() {}
    ~TPressHouse();
    void Add(TPress* press);
    int Count() const;
    const TPress& Item(int index) const;

private:
    TPressHouse(const TPressHouse&);
    TPressHouse& operator=(const TPressHouse&);

    std::vector<TPress*> FItems;
};

#endif
