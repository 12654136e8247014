// Runs the accumulator, dumps its waveforms, and writes down how long after the clock each signal
// has settled in the worst case that the run has seen.

`timescale 1ps / 1ps

// Watches one signal: its latest rising and falling edge after the clock.
module latest_edges (input watching, input clock, input signal);
    time clock_edge = 0;
    time rise = 0;
    time fall = 0;
    always @(posedge clock) clock_edge = $time;
    always @(posedge signal) if (watching && $time - clock_edge > rise) rise = $time - clock_edge;
    always @(negedge signal) if (watching && $time - clock_edge > fall) fall = $time - clock_edge;
endmodule

module accumulator_tb;
    localparam PERIOD = 4000;
    localparam CYCLES = 40;

    reg clock = 1'b0;
    reg reset = 1'b1;
    reg [7:0] addend = 8'h01;
    wire [7:0] total;
    accumulator dut (clock, reset, addend, total);

    always #(PERIOD / 2) clock = ~clock;

    // The addend of the next cycle comes from a shift register with feedback (x^8+x^6+x^5+x^4+1).
    always @(posedge clock)
        addend <= {addend[6:0], addend[7] ^ addend[5] ^ addend[4] ^ addend[3]};

    reg watching = 1'b0; // from the first clock after the reset on
    always @(posedge clock) watching <= !reset;

    integer delays;
    task write_row(input [8 * 5 - 1:0] signal, input integer index, input [8 * 4 - 1:0] direction,
                   input time delay);
        $fdisplay(delays, "clock\t%0s[%0d]\t%0s\t%t", signal, index, direction, delay);
    endtask

    genvar i;
    generate
        for (i = 0; i < 8; i = i + 1) begin : bit_slice
            latest_edges of_total (watching, clock, total[i]);
            latest_edges of_sum (watching, clock, dut.sum[i]);
            // Each slice writes its rows in its turn.
            initial begin
                #(CYCLES * PERIOD + 4 * i);
                $timeformat(-12, 0, " ps", 0);
                write_row("total", i, "rise", of_total.rise);
                write_row("total", i, "fall", of_total.fall);
                $timeformat(-9, 3, " ns", 0);
                write_row("sum", i, "rise", of_sum.rise);
                write_row("sum", i, "fall", of_sum.fall);
            end
        end
    endgenerate

    initial begin
        delays = $fopen("delays.txt");
        $fdisplay(delays, "from\tto\tedge\tdelay");
        $dumpfile("accumulator.vcd");
        $dumpvars(0, clock, reset, addend, total, dut.sum);
        #(PERIOD + PERIOD / 4) reset = 1'b0;
        #(CYCLES * PERIOD) $finish;
    end
endmodule
