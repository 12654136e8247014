// The headers are CMake's to include.
int main() {}
