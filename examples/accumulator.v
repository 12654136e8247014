// An accumulator of eight bits: a register that adds its input to itself at every clock, through a
// ripple-carry adder. Its cells carry the delays of a slow, invented technology.

`timescale 1ns / 1ps

// A flip-flop with an asynchronous reset.
module flip_flop (input clock, input reset, input d, output reg q);
    always @(posedge clock or posedge reset) begin
        if (reset) q <= 1'b0;
        else q <= d;
    end
    specify
        //                    rise   fall
        (posedge clock => (q +: d)) = (0.212, 0.187);
        (reset => q) = (0.301, 0.254);
    endspecify
endmodule

module full_adder (input a, input b, input carry_in, output sum, output carry_out);
    assign sum = a ^ b ^ carry_in;
    assign carry_out = (a & b) | (carry_in & (a ^ b));
    specify
        //                      rise   fall
        (a, b *> sum) = (0.343, 0.318);
        (carry_in => sum) = (0.229, 0.206);
        (a, b *> carry_out) = (0.276, 0.251);
        (carry_in => carry_out) = (0.143, 0.138);
    endspecify
endmodule

module accumulator (input clock, input reset, input [7:0] addend, output [7:0] total);
    wire [7:0] sum;
    wire [8:0] carry;
    assign carry[0] = 1'b0;
    genvar i;
    generate
        for (i = 0; i < 8; i = i + 1) begin : bit_slice
            full_adder adder (total[i], addend[i], carry[i], sum[i], carry[i + 1]);
            flip_flop register (clock, reset, sum[i], total[i]);
        end
    endgenerate
endmodule
