#include "Commands.h"

int main(int argc, char** argv) {
    return tarn::TarnMain(argc, argv);
}
