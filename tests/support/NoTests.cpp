// The headers that all tests share are compiled for this program.
int main() {
    return 0;
}
