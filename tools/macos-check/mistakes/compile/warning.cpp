// expected: unused variable 'forgotten'
void work() {
    int forgotten = 0;
}
