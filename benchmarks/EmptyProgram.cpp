// Does nothing: what starting a program with its libraries costs.
int main() { return 0; }
