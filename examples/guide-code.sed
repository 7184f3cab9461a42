# The C++ of a Markdown file.
/^```cpp$/,/^```$/{
    /^```/!p
}
