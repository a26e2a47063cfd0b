// Shows the main job where there is no display. Usage: stavelin_demo FOLDER_FOR_PICTURES
#include "e2e/demo/Demonstration.h"

#include <exception>
#include <filesystem>
#include <iostream>

int main(int argc, char *argv[])
{
    if (argc != 2) {
        std::cerr << "usage: " << argv[0] << " FOLDER_FOR_PICTURES\n";
        return 2;
    }
    try {
        std::filesystem::create_directories(argv[1]);
        stavelin::e2e::Demonstration(argv[1]).run();
    } catch (const std::exception &fault) {
        std::cerr << "The demonstration failed: " << fault.what() << "\n";
        return 1;
    }
    std::cout << "Everything did what it should." << std::endl;
    return 0;
}
