// A program of headers alone: what all tests include is compiled for it once.
int main() {}
