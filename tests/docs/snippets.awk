# snippets.awk: makes programs from the C++ code of a page, and a file with the output that the page shows.
#
#     awk -v page=tutorial.md -v out=FOLDER/tutorial -f snippets.awk tutorial.md
#
# A ```cpp block with a main() becomes a program of its own, FOLDER/tutorial-LINE.cpp, without changes. Each
# other block becomes a function in a source of its own, FOLDER/tutorial_LINE.cpp, which first includes what the
# block includes (see Snippet.h); FOLDER/tutorial.cpp lists the functions. FOLDER/tutorial.list names the blocks
# in order. A ```text block shows the output of the C++ block before it; FOLDER/tutorial.expected contains the
# output of all blocks.
#
# In a function, a line "EXPRESSION;  // RESULT" is also checked. The result is a number, a text in quotes, true
# or false; a comma or colon after it begins a remark. A line "EXPRESSION;" before a line
# "// throws CLASS: MESSAGE" is checked in the same way. In errors.md, that message is the heading of its section.

function checked(line, at,   expression, result) {
    if (!match(line, /;  *\/\/ /) || line ~ /^ *(using|return|class|struct|const|auto|std::cout) /)
        return line
    expression = substr(line, 1, RSTART - 1)
    result = substr(line, RSTART + RLENGTH)
    if (result ~ /^"/) {
        match(substr(result, 2), /"/)
        result = substr(result, 1, RSTART + 1)
    } else if (result ~ /^(-?[0-9.]+(e[-+]?[0-9]+)?|true|false)([,:].*)?$/) {
        sub(/[,:].*/, "", result)
    } else {
        return line
    }
    return "    mensor_docs::gives(" at ", R\"~(" result ")~\", (" expression "));"
}

function throwing(line, at, outcome) {
    sub(/^ *\/\/ throws /, "", outcome)
    if (heading != "") {
        if (outcome ~ /: / && substr(outcome, index(outcome, ": ") + 2) == heading) provoked = 1
    }
    return "    mensor_docs::throws(" at ", R\"~(" outcome ")~\", [&] { " line " });"
}

function require_provoked() {
    if (heading != "" && !provoked) print "no code provokes: " heading > expected
    heading = ""
}

function write_program(   i, file) {
    file = out "-" start ".cpp"
    for (i = start; i < NR; ++i) print block[i] > file
    close(file)
}

function write_function(   i, file, includes, body) {
    for (i = start; i < NR; ++i) {
        if (block[i] ~ /^ *#include/) includes = includes block[i] "\n"
        else if (i + 1 < NR && block[i + 1] ~ /^ *\/\/ throws /)
            body = body throwing(block[i], i, block[i + 1]) "\n"
        else body = body checked(block[i], i) "\n"
    }
    file = out "_" start ".cpp"
    print "// Made of " page "." > file
    print includes > file
    print "namespace mensor_docs {" > file
    print "template <class Result> void gives(int line, const char* shown, const Result& result);" > file
    print "template <class Action> void throws(int line, const char* shown, Action action);" > file
    print "}\n" > file
    print "void line" start "();" > file
    print "void line" start "() {\n" body "}\n" > file
    print "#include \"Snippet.h\"" > file
    close(file)
    functions = functions "void line" start "();\n"
    calls = calls "    {" start ", line" start "},\n"
}

BEGIN {
    list = out ".list"
    expected = out ".expected"
    printf "" > list
    printf "" > expected
}

/^ +```(cpp)?$/ { sub(/^ +/, "") }  # a block in a list

/^```/ && inside == "" {
    inside = substr($0, 4) == "" ? "plain" : substr($0, 4)
    start = NR + 1
    hasMain = 0
    next
}

/^```/ {
    if (inside == "cpp") {
        if (hasMain) write_program()
        else write_function()
        print start, hasMain ? "program" : "function" > list
        print "--- line " start > expected
    }
    inside = ""
    next
}

inside == "cpp" {
    block[NR] = $0
    if ($0 ~ /int main\(/) hasMain = 1
}

inside == "text" { print > expected }

page == "errors.md" && inside == "" && /^## `/ {
    require_provoked()
    heading = substr($0, 5)
    sub(/`$/, "", heading)
    provoked = 0
}

END {
    require_provoked()
    file = out ".cpp"
    print "// Made of " page "." > file
    print "#include \"Snippet.h\"\n" > file
    print functions > file
    print "const mensor_docs::Snippet mensor_docs::SNIPPETS[] = {\n" calls "    {0, nullptr}};" > file
}
