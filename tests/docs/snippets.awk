# snippets.awk: makes programs from the C++ code of pages, and files with the output that the pages show.
#
#     awk -v out=FOLDER -f snippets.awk README.md docs/tutorial.md...
#
# A ```cpp block with a main() becomes a program of its own, FOLDER/tutorial-LINE.cpp, without changes. Each
# other block becomes a function, tutorial_LINE(). Blocks that include the same headers in the same order become
# one source, FOLDER/functions_NUMBER.cpp, which first includes these headers and nothing else (see Snippet.h).
# FOLDER/functions.cpp lists all functions. FOLDER/tutorial.list names the blocks of the page in order. A ```text
# block shows the output of the C++ block before it; FOLDER/tutorial.expected contains the output of all blocks.
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
    file = out "/" page "-" start ".cpp"
    for (i = start; i < FNR; ++i) print block[i] > file
    close(file)
}

function add_function(   i, name, line, includes, body) {
    name = page "_" start
    gsub(/-/, "_", name)
    for (i = start; i < FNR; ++i) {
        line = block[i]
        if (line ~ /^ *#include/) {
            sub(/^ */, "", line)
            includes = includes line "\n"
            line = ""  # keeps the numbers of lines
        } else if (i + 1 < FNR && block[i + 1] ~ /^ *\/\/ throws /) {
            line = throwing(line, i, block[i + 1])
        } else {
            line = checked(line, i)
        }
        body = body line "\n"
    }
    # Messages of the compiler name the line of the page.
    body = "\nvoid " name "() {\n#line " start " \"" FILENAME "\"\n" body "}\n"
    if (!(includes in bodies)) lists[++sources] = includes
    bodies[includes] = bodies[includes] body
    declarations = declarations "void " name "();\n"
    rows = rows "    {\"" page "\", " start ", " name "},\n"
}

function write_functions(   i, file) {
    for (i = 1; i <= sources; ++i) {
        file = out "/functions_" i ".cpp"
        print "// Made of the pages." > file
        print lists[i] > file
        print "namespace mensor_docs {" > file
        print "template <class Result> void gives(int line, const char* shown, const Result& result);" > file
        print "template <class Action> void throws(int line, const char* shown, Action action);" > file
        print "}" > file
        print bodies[lists[i]] > file
        print "#include \"Snippet.h\"" > file
        close(file)
    }
    file = out "/functions.cpp"
    print "// Made of the pages." > file
    print "#include \"Snippet.h\"\n" > file
    print declarations > file
    print "const mensor_docs::Snippet mensor_docs::SNIPPETS[] = {\n" rows "    {nullptr, 0, nullptr}};" > file
}

function end_page() {
    require_provoked()
    close(list)
    close(expected)
}

FNR == 1 {
    if (page != "") end_page()
    page = tolower(FILENAME)
    sub(/.*\//, "", page)
    sub(/\.md$/, "", page)
    list = out "/" page ".list"
    expected = out "/" page ".expected"
    printf "" > list
    printf "" > expected
    inside = ""
}

/^ +```(cpp)?$/ { sub(/^ +/, "") }  # a block in a list

/^```/ && inside == "" {
    inside = substr($0, 4) == "" ? "plain" : substr($0, 4)
    start = FNR + 1
    hasMain = 0
    next
}

/^```/ {
    if (inside == "cpp") {
        if (hasMain) write_program()
        else add_function()
        print start, hasMain ? "program" : "function" > list
        print "--- line " start > expected
    }
    inside = ""
    next
}

inside == "cpp" {
    block[FNR] = $0
    if ($0 ~ /int main\(/) hasMain = 1
}

inside == "text" { print > expected }

page == "errors" && inside == "" && /^## `/ {
    require_provoked()
    heading = substr($0, 5)
    sub(/`$/, "", heading)
    provoked = 0
}

END {
    end_page()
    write_functions()
}
