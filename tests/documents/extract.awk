# Makes a program of each ```cpp block of the documents, and prints the programs' names.
#
#     awk -v out=FOLDER -f extract.awk README.md docs/formats.md ...
#
# writes out/NAME.cpp, where NAME is the document's path with the number of the block. A block
# without a main function becomes the body of one, its #include lines in front. The ```output block
# that comes next, before another ```cpp block, is what the program prints: out/NAME.txt.

function begin(kind) {
    inside = kind
    lines = 0
    firstLine = FNR + 1
}

function write(file,    i, isBody) {
    isBody = 1
    for (i = 1; i <= lines; ++i) {
        if (text[i] ~ /int main\(/) {
            isBody = 0
        }
    }
    printf "" > file
    if (isBody) {
        for (i = 1; i <= lines; ++i) {
            if (text[i] ~ /^#include/) {
                printf "#line %d \"%s\"\n%s\n", firstLine + i - 1, FILENAME, text[i] > file
            }
        }
        print "int main() {" > file
    }
    printf "#line %d \"%s\"\n", firstLine, FILENAME > file
    for (i = 1; i <= lines; ++i) {
        print (isBody && text[i] ~ /^#include/ ? "" : text[i]) > file
    }
    if (isBody) {
        print "}" > file
    }
    close(file)
}

function writeOutput(file,    i) {
    printf "" > file
    for (i = 1; i <= lines; ++i) {
        print text[i] > file
    }
    close(file)
}

FNR == 1 {
    inside = ""
    number = 0
    name = ""
}

inside != "" && /^```[ \t]*$/ {
    if (inside == "cpp") {
        name = FILENAME
        sub(/\.md$/, "", name)
        gsub(/[^A-Za-z0-9]/, "_", name)
        name = name "_" ++number
        print name
        write(out "/" name ".cpp")
    } else if (inside == "output" && name != "") {
        writeOutput(out "/" name ".txt")
        name = ""
    }
    inside = ""
    next
}

inside != "" {
    text[++lines] = $0
    next
}

/^```cpp[ \t]*$/ { begin("cpp"); next }
/^```output[ \t]*$/ { begin("output"); next }
/^```/ { begin("other") }
