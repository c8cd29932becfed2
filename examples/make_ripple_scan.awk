# Makes examples/ripple_scan.ply, an organised scan of 40 x 30 pixels over a rippled surface:
#
#     awk -f examples/make_ripple_scan.awk > examples/ripple_scan.ply
#
# Pixel (column, row) looks at x = (column - 20) / 10, y = (row - 15) / 10. With r the distance from
# the middle, z = cos(4 r) / 5 and the intensity falls from 255 by 60 a unit. The pixels around
# (1.2, 0.8) are in a shadow: they are missing, which scans mark with nan.
BEGIN {
    columns = 40
    rows = 30
    print "ply"
    print "format ascii 1.0"
    print "comment rippled surface, made by make_ripple_scan.awk; missing pixels are nan"
    print "obj_info num_cols " columns
    print "obj_info num_rows " rows
    print "element vertex " columns * rows
    print "property float x"
    print "property float y"
    print "property float z"
    print "property float intensity"
    print "end_header"
    for (row = 0; row < rows; ++row) {
        for (column = 0; column < columns; ++column) {
            x = (column - 20) / 10
            y = (row - 15) / 10
            r = sqrt(x * x + y * y)
            if ((x - 1.2) ^ 2 + (y - 0.8) ^ 2 < 0.05)
                print "nan nan nan 0"
            else
                printf "%.4g %.4g %.4f %.1f\n", x, y, cos(4 * r) / 5, 255 - 60 * r
        }
    }
}
