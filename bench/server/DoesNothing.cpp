// What a process costs by itself: the yardstick of the measurements.
int main() { return 0; }
