from support import NO, OK, STRICT, TROUBLE, ProgramTest, node, text_value


class Diff(ProgramTest):
    def diff(self, first, second, *options, code):
        self.write("a.qzt", first)
        self.write("b.qzt", second)
        return self.tool("diff", *options, "a.qzt", "b.qzt", code=code)

    def test_differences(self):
        cases = [  # first, second, what is printed
            ("[\\]\na=i1", "[\\]\na=i1", ""),
            ("[\\]\na=i1\nb=i2", "[\\]\nB=i2\nA=i1", ""),  # neither order nor case
            ("[\\]", "", ""),
            ("[\\]\na=i1", "[\\]\na=i2", "~ \\a  int 1 -> int 2\n"),
            ("[\\]\na=i1", "[\\]\na=l1", "~ \\a  int 1 -> long 1\n"),
            ("[\\]\na=e", "[\\]\na=s", '~ \\a  empty -> text ""\n'),
            ("[\\]\na=R1", "[\\]\na=R1.0000000001", "~ \\a  double 1 -> double 1.0000000001\n"),
            ("[\\]\na=Z1,2", "[\\]\na=Z1,2", ""),
            ("[\\]\na=t1,1,1,1", "[\\]\na=t5,9,0,0", "~ \\a  rect 1,1,1,1 -> rect 5,9,0,0\n"),
            ("[\\]\na=x00", "[\\]\na=x0000", "~ \\a  blob 00 -> blob 0000\n"),
            ("[\\]\na=i1", "[\\]", "- \\a  int 1\n"),
            ("[\\]", "[\\s\\t]\na=i1", "+ \\s\\\n+ \\s\\t\\\n+ \\s\\t\\a  int 1\n"),
            ("[\\s]\na=sx", "[\\]", '- \\s\\\n- \\s\\a  text "x"\n'),
        ]
        for first, second, printed in cases:
            with self.subTest(first=first, second=second):
                result = self.diff(first, second, code=NO if printed else OK)
                self.assertEqual((result.out, result.err), (printed, ""))

    def test_kinds_may_differ(self):
        self.write("a.qzt", "[\\]\na=sx\n")
        self.write("a.qzs", node(values=[("a", text_value("x"))]))
        self.tool("diff", "a.qzt", "a.qzs")

    def test_objects_are_compared_by_class_and_bytes(self):
        def star(data):
            return node(values=[("o", b"\x12\0Star\0" + len(data).to_bytes(4, "little") + data)])
        for second, code in ((b"abc", OK), (b"abd", NO), (b"ab", NO)):
            with self.subTest(second=second):
                self.write("a.qzs", star(b"abc"))
                self.write("b.qzs", star(second))
                self.tool("diff", "a.qzs", "b.qzs", code=code)

    def test_trouble(self):
        self.write("a.qzt", "[\\]\n")
        self.tool("diff", "a.qzt", "none.qzt", code=TROUBLE)
        self.tool("diff", "a.qzt", code=TROUBLE)
        self.diff("a=i1\n[\\]\n", "[\\]\n", "--strict", code=STRICT)
