// Runs the accumulator for many clocks and dumps every signal: a dump of any size, in which there
// are vectors of one to 128 bits, unknown and undriven bits, a real number and an event.

`timescale 1ps / 1ps

module long_run_tb;
    parameter CYCLES = 1000;
    localparam PERIOD = 4000;

    reg clock = 1'b0;
    reg reset = 1'b1;
    reg [7:0] addend = 8'h01;
    wire [7:0] total;
    accumulator dut (clock, reset, addend, total);

    always #(PERIOD / 2) clock = ~clock;

    // All that has been added since the reset, the last sixteen totals, and their mean.
    reg [63:0] grand_total = 64'd0;
    reg [127:0] history = 128'bx;
    real mean = 0.0;
    integer cycle = 0;
    integer seed = 1;
    // A bus that the accumulator drives in every fourth clock.
    wire [7:0] bus = cycle[1:0] == 2'b00 ? total : 8'bz;
    event overflow;

    always @(negedge clock) if (!reset) begin
        cycle <= cycle + 1;
        addend <= $random(seed);
        grand_total <= grand_total + addend;
        history <= {history[119:0], total};
        mean <= 0.9375 * mean + 0.0625 * total;
        if (total + addend > 255) -> overflow;
    end

    reg [8 * 256 - 1:0] dump;
    initial begin
        if (!$value$plusargs("dump=%s", dump)) dump = "long_run.vcd";
        $dumpfile(dump);
        $dumpvars(0, long_run_tb);
        #(PERIOD + PERIOD / 4) reset = 1'b0;
        #(64'd1 * CYCLES * PERIOD) $finish;
    end
endmodule
