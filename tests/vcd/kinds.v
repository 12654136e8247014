// A variable of every kind that the simulator dumps, and every way in which it writes a value. To
// make kinds.vcd anew:
//
//     iverilog -g2012 -o kinds.vvp kinds.v && vvp -n kinds.vvp

`timescale 1ns / 10ps

module stage (input [7:0] in, output reg [3:0] out);
    always @* out = in[3:0];
endmodule

module kinds;
    reg clock = 0;
    reg [7:0] a;
    wire [3:0] low;
    stage first (a, low);

    reg [0:6] ascending;
    reg signed [11:0] \signed+one ;
    logic [64:0] wide;
    wire undriven;
    integer counter;
    time moment;
    real number;
    event tick;
    byte letter;
    bit [1:0] two_states;
    enum {IDLE, BUSY} state;

    always #5 clock = ~clock;

    initial begin : stimulus
        integer i;
        $dumpfile("kinds.vcd");
        $dumpvars(0, kinds);
        i = 1;
        a = 8'b0000000x;
        #10 a = 8'b000z0000;
        number = 1.25;
        moment = $time;
        #10 a = 8'bzzzzzzzz;
        wide = 65'h1;
        \signed+one = -5;
        -> tick;
        #10 -> tick;
        a = 8'b1x0z1x0z;
        number = -0.1;
        #3.17 a = 8'bx0000000;
        #6.83 $dumpoff;
        a = 8'h41;
        letter = "Q";
        #20 two_states = 2;
        $dumpon;
        #5 $dumpall;
        #5 wide = 65'bx0;
        counter = -1;
        ascending = 7'h0f;
        state = BUSY;
        -> tick;
        #5 wide = {1'b1, 64'hFEDCBA9876543210};
        number = 6.02214076e23;
        moment = $time;
        #10 $finish;
    end
endmodule
