#include "studio/app/program.h"
#include "studio/window/commands.h"

int main(int argc, char** argv) {
    return tavora::studio::runProgram(argc, argv,
                                      {tavora::studio::edit, tavora::studio::drawPanel});
}
