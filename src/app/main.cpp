#include "app/Application.h"

int main(int argc, char *argv[])
{
    return pulsebar::runApplication(argc, argv);
}
